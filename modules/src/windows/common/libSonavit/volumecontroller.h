#pragma once

#include "COM/comptr.h"
#include "libModuleCommon/export.h"
#include "libSonavit/volumechangenotification.h"
#include "platform/coreaudio.h"
#include "qor/string.h"

/// Level and mute of one audio control, in percent and in decibels, by channel and as a master value.
///
/// No operation locks. Only registerVolumeChangeNotification() tests whether the platform's interface is nil: on a
/// part's control ask hasVolumeControl() or hasMuteControl() first. Readers ignore the platform's HRESULT on purpose
/// and answer on failure what their comments state. Setters pass a null event context, hand the value to the platform
/// without clamping it or rounding it to a step, and return whether the platform accepts it. Nothing is logged unless a
/// comment states it.
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

    /// Range of @p channel in decibels; an endpoint has one range for all channels. @return false, with @p range as the
    /// platform left it, if the call fails
    virtual bool volumeRangeDecibel(unsigned int channel, DbVolumeRange& range) const = 0;

    /// Master level in percent: 0 to 100 on an endpoint, 0 on failure. Required behaviour: a part's control answers 50
    /// at the bottom of its range and 150 at the top.
    /// @exception qor::AssertionFailure "numChannel() > 0" from a part's control without channels
    virtual unsigned int masterVolumeLevelPercent() const = 0;

    /// Master level in decibels, 0 on failure. On a part the mean of its channels; NaN if it has none.
    virtual float masterVolumeLevelDecibel() const = 0;

    /// Sets @p channel to @p percent of the range; more than 100 is handed to the platform, too.
    virtual bool setVolumeLevelPercent(unsigned int channel, unsigned int percent) = 0;

    /// Sets @p channel to @p level decibels.
    virtual bool setVolumeLevelDecibel(unsigned int channel, float level) = 0;

    /// Sets the master level to @p percent of the range. Required behaviour: a part's control returns false and does
    /// nothing.
    virtual bool setMasterVolumeLevelPercent(unsigned int percent) = 0;

    /// Sets the master level to @p level decibels; on a part all channels alike.
    virtual bool setMasterVolumeLevelDecibel(float level) = 0;

    /// Registers @p notification for changes of the control, in place of the one that was registered before
    /// (IAudioEndpointVolume::RegisterControlChangeNotify). A part's control returns false and does nothing.
    ///
    /// The controller keeps a reference on @p notification, even if the platform refuses it. Its destructor unregisters
    /// the notification, and so does the destructor of each copy.
    /// @return false, with a message (LOG_WARNING), if the interface is nil or the platform refuses
    virtual bool registerVolumeChangeNotification(const COMPtr<VolumeChangeNotification>::pointer& notification) = 0;

    /// Name and type of the owner of the control; valid while the controller exists.
    virtual const qor::String& ownerName() const = 0;
    virtual const GUID& ownerType() const = 0;

    /// Whether the control is muted; true on failure.
    virtual bool isMuted() const = 0;

    /// Mutes the control or ends that. @return whether the platform accepts it
    virtual bool setMute(bool mute) = 0;

    /// Whether there is a level, and a mute. Required behaviour: an endpoint's control always answers true.
    virtual bool hasVolumeControl() const = 0;
    virtual bool hasMuteControl() const = 0;

    virtual ~VolumeControllerInterface() noexcept(false); // a handle's Release may throw, see qor/resource.h
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

/// A control with one of the two structures above as its policy. A value: copies hold references of their own.
///
/// The destructor of an endpoint's controller, or of a copy of one, unregisters its notification from the interface
/// that the controller holds at that moment.
template<class Policy>
class SONAVIT_API VolumeController : public VolumeControllerInterface
{
public:
    VolumeController(const Policy& policy);
    VolumeController(const VolumeController& other);

    /// Assigns field by field: a notification that this controller registered stays registered with the platform.
    VolumeController& operator=(const VolumeController& other);

    /// Replaces the policy. A registered notification stays registered with the old interface; the controller will
    /// unregister it from the new one.
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
    COMPtr<VolumeChangeNotification>::pointer m_notification; // only an endpoint's control sets it
};

// The operations that the two controls implement differently. A specialization must be declared before its first use,
// and on Windows it does not inherit the export attribute of its class.
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

// The library contains all other operations, which are the same for both.
extern template class VolumeController<EndpointVolumeController>;
extern template class VolumeController<RegularVolumeController>;
