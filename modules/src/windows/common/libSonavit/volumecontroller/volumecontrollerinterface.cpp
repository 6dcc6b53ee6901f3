#include "libSonavit/volumecontroller.h"

VolumeControllerInterface::VolumeControllerInterface() = default;
VolumeControllerInterface::VolumeControllerInterface(const VolumeControllerInterface&) = default;
VolumeControllerInterface& VolumeControllerInterface::operator=(const VolumeControllerInterface&) = default;
VolumeControllerInterface::~VolumeControllerInterface() noexcept(false) = default;
