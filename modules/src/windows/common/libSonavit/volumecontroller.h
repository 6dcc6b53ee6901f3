#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/volumechangenotification.h"
#include "platform/coreaudio.h"
#include "qor/string.h"

/// Level and mute of one audio control, in percent and in decibels, by channel and as a master value.
///
/// No operation locks. No operation but registerVolumeChangeNotification() looks whether the interface behind it is
/// there. Readers do not look at the platform's results: where a call fails, they answer what stands with each. Setters
/// pass a null event context, take values as they are, without clamping or rounding to a step, and answer whether the
/// platform accepted.
class SONAVIT_API VolumeControllerInterface
{
public:
    /// All in decibels.
    struct DbVolumeRange
    {
        float minLevel;
        float maxLevel;
        float stepping;
    };

    VolumeControllerInterface();
    VolumeControllerInterface(const VolumeControllerInterface& other);
    VolumeControllerInterface& operator=(const VolumeControllerInterface& other);

    /// Number of channels; 0 on failure.
    virtual unsigned int numChannel() const = 0;

    /// Level of @p channel in percent, 0 to 100 within the range; 0 on failure of an endpoint's control.
    virtual unsigned int volumeLevelPercent(unsigned int channel) const = 0;

    /// Level of @p channel in decibels; 0 on failure.
    virtual float volumeLevelDecibel(unsigned int channel) const = 0;

    /// Range of @p channel in decibels; an endpoint has one for all channels. @return whether the platform gave it
    virtual bool volumeRangeDecibel(unsigned int channel, DbVolumeRange& range) const = 0;

    /// Master level in percent: 0 to 100 on an endpoint, 0 on failure. A part's control answers 50 at the bottom of its
    /// range and 150 at the top; see its implementation.
    /// @exception qor::AssertionFailure "numChannel() > 0" from a part's control without channels
    virtual unsigned int masterVolumeLevelPercent() const = 0;

    /// Master level in decibels, 0 on failure. On a part the mean of its channels, not a number where it has none.
    virtual float masterVolumeLevelDecibel() const = 0;

    /// Sets @p channel to @p percent of the range.
    virtual bool setVolumeLevelPercent(unsigned int channel, unsigned int percent) = 0;

    /// Sets @p channel to @p level decibels.
    virtual bool setVolumeLevelDecibel(unsigned int channel, float level) = 0;

    /// Sets the master level to @p percent of the range. A part's control cannot: false, and nothing happens.
    virtual bool setMasterVolumeLevelPercent(unsigned int percent) = 0;

    /// Sets the master level to @p level decibels; on a part all channels alike.
    virtual bool setMasterVolumeLevelDecibel(float level) = 0;

    /// Has @p notification called on each change, in place of the one registered before. A part's control cannot:
    /// false.
    ///
    /// The controller keeps a reference also where the platform refuses, and unregisters at its end; so does each copy
    /// of it.
    /// @return false, and a message (LOG_WARNING), without an interface or where the platform refuses
    virtual bool registerVolumeChangeNotification(const COMPtr<VolumeChangeNotification>::pointer& notification) = 0;

    /// Name and type of what the control belongs to.
    virtual const qor::String& ownerName() const = 0;
    virtual const GUID& ownerType() const = 0;

    /// Whether it is muted. A control that does not tell counts as muted.
    virtual bool isMuted() const = 0;
    virtual bool setMute(bool mute) = 0;

    /// Whether there is a level and a mute to be had. An endpoint's control claims both in any case.
    virtual bool hasVolumeControl() const = 0;
    virtual bool hasMuteControl() const = 0;

    virtual ~VolumeControllerInterface() noexcept(false); // handles may let an exception pass, see qor/resource.h
};

/// The control of an endpoint: levels in decibels and as a scalar from 0.0 to 1.0, both from the platform.
struct SONAVIT_API EndpointVolumeController
{
    COMPtr<IAudioEndpointVolume>::pointer endpointVolume; ///< may be nil
    GUID ownerType = {};                                  ///< the endpoint's kind of jack
    qor::String ownerName;                                ///< the endpoint's description
};

/// The control of a part in a hardware graph: levels in decibels only, from which percent are computed.
struct SONAVIT_API RegularVolumeController
{
    COMPtr<IAudioVolumeLevel>::pointer volumeLevel; ///< may be nil
    COMPtr<IAudioMute>::pointer mute;               ///< may be nil
    GUID ownerType = {};
    qor::String ownerName;
};

/// A control as its policy holds it, one of the two structures above. A value: copies hold references of their own.
///
/// Ending a controller, or a copy, of an endpoint unregisters its notification from the interface that it then holds.
template<class Policy>
class SONAVIT_API VolumeController : public VolumeControllerInterface
{
public:
    VolumeController(const Policy& policy);
    VolumeController(const VolumeController& other);

    /// Field by field: a notification that this controller had registered is forgotten and stays with the platform.
    VolumeController& operator=(const VolumeController& other);

    /// Rebinds the controller. A registered notification stays, and stays registered where it was; the controller will
    /// take it off the new interface.
    void initialize(const Policy& policy);

    unsigned int numChannel() const override;
    unsigned int volumeLevelPercent(unsigned int channel) const override;
    float volumeLevelDecibel(unsigned int channel) const override;
    bool volumeRangeDecibel(unsigned int channel, DbVolumeRange& range) const override;
    unsigned int masterVolumeLevelPercent() const override;
    float masterVolumeLevelDecibel() const override;
    bool setVolumeLevelPercent(unsigned int channel, unsigned int percent) override;
    bool setVolumeLevelDecibel(unsigned int channel, float level) override;
    bool setMasterVolumeLevelPercent(unsigned int percent) override;
    bool setMasterVolumeLevelDecibel(float level) override;
    bool registerVolumeChangeNotification(const COMPtr<VolumeChangeNotification>::pointer& notification) override;
    const qor::String& ownerName() const override;
    const GUID& ownerType() const override;
    bool isMuted() const override;
    bool setMute(bool mute) override;
    bool hasVolumeControl() const override;
    bool hasMuteControl() const override;
    ~VolumeController() noexcept(false) override;

private:
    Policy m_policy;
    COMPtr<VolumeChangeNotification>::pointer m_notification; // only the control of an endpoint sets it
};

// What the two controls answer each in its own way. A specialization must be known before anybody uses it, and on
// Windows it does not have the export mark of its class.
#define SONAVIT_OWN_ANSWERS_OF(Policy)                                                                               \
    template<>                                                                                                       \
    SONAVIT_API unsigned int VolumeController<Policy>::numChannel() const;                                           \
    template<>                                                                                                       \
    SONAVIT_API unsigned int VolumeController<Policy>::volumeLevelPercent(unsigned int channel) const;               \
    template<>                                                                                                       \
    SONAVIT_API float VolumeController<Policy>::volumeLevelDecibel(unsigned int channel) const;                      \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::volumeRangeDecibel(unsigned int channel, DbVolumeRange& range) const; \
    template<>                                                                                                       \
    SONAVIT_API unsigned int VolumeController<Policy>::masterVolumeLevelPercent() const;                             \
    template<>                                                                                                       \
    SONAVIT_API float VolumeController<Policy>::masterVolumeLevelDecibel() const;                                    \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::setVolumeLevelPercent(unsigned int channel, unsigned int percent);    \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::setVolumeLevelDecibel(unsigned int channel, float level);             \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::setMasterVolumeLevelPercent(unsigned int percent);                    \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::setMasterVolumeLevelDecibel(float level);                             \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::registerVolumeChangeNotification(                                     \
        const COMPtr<VolumeChangeNotification>::pointer& notification);                                              \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::hasVolumeControl() const;                                             \
    template<>                                                                                                       \
    SONAVIT_API bool VolumeController<Policy>::hasMuteControl() const;                                               \
    template<>                                                                                                       \
    SONAVIT_API VolumeController<Policy>::~VolumeController() noexcept(false)

SONAVIT_OWN_ANSWERS_OF(EndpointVolumeController);
SONAVIT_OWN_ANSWERS_OF(RegularVolumeController);

#undef SONAVIT_OWN_ANSWERS_OF

// All else is the same for both; the library holds it.
extern template class VolumeController<EndpointVolumeController>;
extern template class VolumeController<RegularVolumeController>;
