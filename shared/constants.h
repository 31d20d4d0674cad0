// The vocabulary that the GUI, the agent and this library share: scripting codes, signatures, notification and
// pasteboard names, preference keys, colours. Both programs match on these exact values, oddities included.
// All but the colours are fixed when the library is built and can be read at any time on any thread.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/color.h"
#include "platform/four_char_code.h"

namespace SharedClasses {

using platform::FourCharCode;
using platform::fourCharCode;

// Application signatures.

inline constexpr FourCharCode kGUIAppSignature = fourCharCode("QZV2");  // the GUI application
inline constexpr FourCharCode kAgentSignature = fourCharCode("QZ2d");   // the background agent
inline constexpr FourCharCode kAIMSignature = fourCharCode("AimC");     // AIM client
inline constexpr FourCharCode kiChatSignature = fourCharCode("fez!");   // iChat
inline constexpr FourCharCode kAdiumSignature = fourCharCode("AdIM");   // Adium
inline constexpr FourCharCode kYahooSignature = fourCharCode("YHOO");   // Yahoo messenger

// Scripting model: classes, properties and attributes of the suite that both programs share.
// Kept: the suite code equals the GUI's signature, kPortClassCode equals kPortPropertyCode, and kSchedSetReqEventCode
// equals kScheduleSetClassCode.

inline constexpr FourCharCode kAppleScriptSuiteCode =
    fourCharCode("QZV2");  // event class (suite) of all of the program's own events
inline constexpr FourCharCode kCatalogPropertyCode = fourCharCode("Catg");            // catalogue property
inline constexpr FourCharCode kCatalogDictPropCode = fourCharCode("CatD");            // catalogue dictionary property
inline constexpr FourCharCode kModelCode = fourCharCode("Modl");                      // model (generic)
inline constexpr FourCharCode kControllerModelCode = fourCharCode("CMod");            // controller model
inline constexpr FourCharCode kDeviceModelCode = fourCharCode("DMod");                // device model
inline constexpr FourCharCode kPortClassCode = fourCharCode("Port");                  // port class
inline constexpr FourCharCode kControllerClassCode = fourCharCode("Ctlr");            // controller class
inline constexpr FourCharCode kControllerDictCode = fourCharCode("cDct");             // controller dictionary
inline constexpr FourCharCode kDeviceClassCode = fourCharCode("Devc");                // device class
inline constexpr FourCharCode kDeviceDictCode = fourCharCode("dDct");                 // device dictionary
inline constexpr FourCharCode kActionClassCode = fourCharCode("Actn");                // action (generic)
inline constexpr FourCharCode kDeviceActionClassCode = fourCharCode("DevA");          // device action
inline constexpr FourCharCode kLogActionClassCode = fourCharCode("LAct");             // log action
inline constexpr FourCharCode kSayActionClassCode = fourCharCode("SayA");             // speak action
inline constexpr FourCharCode kOpenActionClassCode = fourCharCode("Open");            // open-file action
inline constexpr FourCharCode kMailActionClassCode = fourCharCode("Mail");            // mail action
inline constexpr FourCharCode kInstantMessageActionClassCode = fourCharCode("IMAc");  // instant-message action
inline constexpr FourCharCode kRunScriptActionClassCode = fourCharCode("ScpA");       // run-script action
inline constexpr FourCharCode kPlayActionClassCode = fourCharCode("Play");            // play-sound action
inline constexpr FourCharCode kActionCodeAttribute = fourCharCode("aCod");            // action code attribute
inline constexpr FourCharCode kActionAmountAttribute = fourCharCode("Amnt");          // action amount attribute
inline constexpr FourCharCode kActionParamsAttribute = fourCharCode("Parm");          // action parameters attribute
inline constexpr FourCharCode kCommandClassCode = fourCharCode("Comd");               // command class
inline constexpr FourCharCode kEventClassCode = fourCharCode("Evnt");                 // schedule event (generic)
inline constexpr FourCharCode kCalendarEventClassCode = fourCharCode("CEvt");         // calendar (time-of-day) event
inline constexpr FourCharCode kSunEventClassCode = fourCharCode("SEvt");              // sunrise/sunset event
inline constexpr FourCharCode kIntervalEventClassCode = fourCharCode("REvt");         // repeating interval event
inline constexpr FourCharCode kResponderClassCode = fourCharCode("Resp");             // responder (trigger) class
inline constexpr FourCharCode kScheduleClassCode = fourCharCode("Sked");              // schedule class
inline constexpr FourCharCode kScheduleSetClassCode = fourCharCode("SSet");           // schedule set class
inline constexpr FourCharCode kSchedSetsDictCode = fourCharCode("sDct");              // schedule-sets dictionary
inline constexpr FourCharCode kAddressPropertyCode = fourCharCode("Addr");            // address property
inline constexpr FourCharCode kAltAddressPropertyCode = fourCharCode("AltA");         // alternate address property
inline constexpr FourCharCode kHouseCodePropertyCode = fourCharCode("Hous");          // house code property
inline constexpr FourCharCode kPortPropertyCode = fourCharCode("Port");               // port property
inline constexpr FourCharCode kStatusPropertyCode = fourCharCode("Stat");             // status property
inline constexpr FourCharCode kNotesPropertyCode = fourCharCode("Note");              // notes property
inline constexpr FourCharCode kCustomPicturePropertyCode = fourCharCode("Pict");      // custom picture property
inline constexpr FourCharCode kLoggingPropertyCode = fourCharCode("Logn");            // logging property
inline constexpr FourCharCode kIndexOfIDPropertyCode = fourCharCode("ID  ");          // index-of-identifier property
inline constexpr FourCharCode kPerformNowEventID = fourCharCode("DoIt");              // event: perform now
inline constexpr FourCharCode kScheduleItemClassAndPropsAttribute =
    fourCharCode("CPrp");                                                      // schedule item's class and properties
inline constexpr FourCharCode kEventDaysAttribute = fourCharCode("Days");      // event days
inline constexpr FourCharCode kEventHourAttribute = fourCharCode("Hour");      // event hour
inline constexpr FourCharCode kEventMinuteAttribute = fourCharCode("Mint");    // event minute
inline constexpr FourCharCode kEventSecurityAttribute = fourCharCode("Vary");  // event security (random variation)
inline constexpr FourCharCode kEventStartDOYAttribute = fourCharCode("Frst");  // first day of year
inline constexpr FourCharCode kEventStopDOYAttribute = fourCharCode("Last");   // last day of year
inline constexpr FourCharCode kEventRelativeToSunriseAttribute = fourCharCode("Sun+");  // offset relative to sunrise
inline constexpr FourCharCode kEventRelativeToSunsetAttribute = fourCharCode("Sun-");   // offset relative to sunset
inline constexpr FourCharCode kEventStartDateTimeAttribute = fourCharCode("Strt");      // start date and time
inline constexpr FourCharCode kEventCountAttribute = fourCharCode("Coun");              // repeat count
inline constexpr FourCharCode kEventIntervalAttribute = fourCharCode("Invl");           // repeat interval
inline constexpr FourCharCode kResponderTriggerAttribute = fourCharCode("Trig");        // responder trigger
inline constexpr FourCharCode kLogTextEventCode = fourCharCode("Log ");       // event: write a text to the log
inline constexpr FourCharCode kCheckVersionEventCode = fourCharCode("Vers");  // event: check for a new version
inline constexpr FourCharCode kSchedSetReqEventCode = fourCharCode("SSet");   // event: request a schedule set

// Help: the event class, and one event for each help page.
// Kept: "Logn" and "CatD" also stand for properties; the event class tells them apart.

inline constexpr FourCharCode kHelpSuiteCode = fourCharCode("Help");
inline constexpr FourCharCode kHelpShowPrefsGeneralCode = fourCharCode("Genl");
inline constexpr FourCharCode kHelpShowPrefsSpeechCode = fourCharCode("Spch");
inline constexpr FourCharCode kHelpShowPrefsLocationCode = fourCharCode("Locn");
inline constexpr FourCharCode kHelpShowPrefsLoggingCode = fourCharCode("Logn");
inline constexpr FourCharCode kHelpShowPrefsExtrasCode = fourCharCode("Extr");
inline constexpr FourCharCode kHelpShowCatalogControllersCode = fourCharCode("CatC");
inline constexpr FourCharCode kHelpShowCatalogDevicesCode = fourCharCode("CatD");
inline constexpr FourCharCode kHelpShowTutorialStartCode = fourCharCode("Tut0");
inline constexpr FourCharCode kHelpShowSetupAssistantCode = fourCharCode("Sup0");
inline constexpr FourCharCode kHelpShowSetupAssistantImportCode = fourCharCode("Sup1");
inline constexpr FourCharCode kHelpShowSetupAssistantAddControllerCode = fourCharCode("Sup2");

// Numbers and characters.

// Stands in display texts where a non-breaking space is wanted.
// Kept: it is U+2002 (en space), not U+00A0, whatever its name says.
inline constexpr char16_t kNBSPChar = 0x2002;

// The values of the plural flag that the wording operations write.
inline constexpr bool kSingularNoun = false;
inline constexpr bool kPluralNoun = true;

// Timeout of an event sent to the agent, in the unit that the sending operation takes; the library itself sends none.
inline constexpr std::int64_t kAgentEventTimeout = 120;

// Longest wait for the answer to a status request, in seconds.
inline constexpr double kMaxWaitForStatusRequest = 4.0;

// What an activity's progress callback returns when its work is finished.
inline constexpr std::int32_t kActivityComplete = 1;

// Notification names. The library posts none of them; the programs post and observe them.
// Kept: kHailAckNotification, kRequestCompleteLinkNotification and kLinkCompletedNotification are not spelled like
// their constants, and two values carry the word "Notification".

inline constexpr std::string_view kPrefsChangedNotification = "PrefsChanged";
inline constexpr std::string_view kLogChangedNotification = "LogChanged";
inline constexpr std::string_view kEmptyLogWantedNotification = "EmptyLog";
inline constexpr std::string_view kStoreScheduleWantedNotification = "StoreSchedule";
inline constexpr std::string_view kAgentDoneLaunchingNotification = "AgentDoneLaunching";
inline constexpr std::string_view kDataModelChangedNotification = "DataModelChanged";
inline constexpr std::string_view kScheduleSizeNotification = "ScheduleSizeNotification";
inline constexpr std::string_view kStoreScheduleDoneNotification = "StoreScheduleDoneNotification";
inline constexpr std::string_view kActivitiesListNotification = "ActivitiesList";
inline constexpr std::string_view kNewActivityNotification = "NewActivity";
inline constexpr std::string_view kActivityChangedNotification = "ActivityChanged";
inline constexpr std::string_view kActivityDoneNotification = "ActivityDone";
inline constexpr std::string_view kUpcomingEventsNotification = "UpcomingEvents";
inline constexpr std::string_view kControllerReportNotification = "ControllerReport";
inline constexpr std::string_view kHailAckNotification = "HailAcknowledgement";
inline constexpr std::string_view kCommFailureNotification = "CommFailure";
inline constexpr std::string_view kDeviceStatusNotification = "DeviceStatus";
inline constexpr std::string_view kRequestDevicesKnownToControllers = "RequestDevicesKnownToControllers";
inline constexpr std::string_view kDevicesKnownToController = "DevicesKnownToController";
inline constexpr std::string_view kRequestSendLinkInviteNotification = "RequestSendLinkInvite";
inline constexpr std::string_view kLinkInviteSentNotification = "LinkInviteSent";
inline constexpr std::string_view kDeviceStartedLinkNotification = "DeviceStartedLink";
inline constexpr std::string_view kRequestCompleteLinkNotification = "RequestAcceptPendingLink";
inline constexpr std::string_view kLinkCompletedNotification = "AcceptedPendingLink";
inline constexpr std::string_view kUnitsPrefsChangedNotification = "UnitsPrefsChanged";

// Pasteboard types.

inline constexpr std::string_view kControllerModelPboardType = "ControllerModelClass";
inline constexpr std::string_view kDeviceModelPboardType = "DeviceModelClass";
inline constexpr std::string_view kDevicePboardType = "Device";
inline constexpr std::string_view kOldFashionedDevicePboardType = "OldFashionedDevice";
inline constexpr std::string_view kEventPboardType = "Event";
inline constexpr std::string_view kResponderPboardType = "Responder";

// Preference keys that the programs use by name. The last two have no default and read as absent until a user sets
// them.

inline constexpr std::string_view kPrefKeyCheckForNewVersions = "checkForAppUpdates";
inline constexpr std::string_view kPrefKeyVersionCheckInterval = "updatesCheckInterval";
inline constexpr std::string_view kPrefKeyTimeOfLastVersionCheck = "timeOfLastVersionCheck";
inline constexpr std::string_view kPrefKeySetupAssistanceWanted = "setupAssistanceWanted";
inline constexpr std::string_view kPrefKeyLogCommandsSent = "logCommandsSent";
inline constexpr std::string_view kPrefKeyLogCommandsHeard = "logCommandsHeard";
inline constexpr std::string_view kPrefKeyLogTimestamps = "logTimestamps";
inline constexpr std::string_view kPrefKeyLimitLogs = "limitLogs";
inline constexpr std::string_view kPrefKeyLogLimit = "logLimit";
inline constexpr std::string_view kPrefKeySunTolerance = "sunTolerance";
inline constexpr std::string_view kPrefKeyRespondToVoiceCmds = "respondToVoiceCmds";
inline constexpr std::string_view kPrefKeyAnnouncementVoice = "announcementVoice";
inline constexpr std::string_view kPrefKeyUSBAccessWanted = "enableUSBAccess";
inline constexpr std::string_view kPrefKeyDesktopRemoteWanted = "enableDesktopRemote";
inline constexpr std::string_view kPrefKeyWebCGIWanted = "enableWebCGI";
inline constexpr std::string_view kPrefKeyX10QuorraServerWanted = "enableX10QuorraServer";
inline constexpr std::string_view kPrefKeyX10QuorraServerPort = "X10QuorraServerPort";
inline constexpr std::string_view kPrefKeyVeltaroServerPort = "VeltaroServerPort";
inline constexpr std::string_view kPrefKeyAdvancedDetailsWanted = "advancedDetailsWanted";
inline constexpr std::string_view kPrefKeyGrowlWanted = "useGrowl";

// Colours: null until initConstants() has run.
extern const platform::Color* kBlueColor;
extern const platform::Color* kGreenColor;
extern const platform::Color* kPurpleColor;
extern const platform::Color* kMarlowPurpleColor;
extern const platform::Color* kRedColor;
extern const platform::Color* kMagentaColor;

using ColorList = std::array<const platform::Color*, 6>;

// The six colours in the order above; null until initConstants() has run.
extern const ColorList* kDefaultColors;

// Makes the colours and returns the list of them. Call it once at start, on the main thread, before anything else reads
// a colour; nothing is locked.
// Kept: a second call makes new colours. The earlier ones stay valid until the process ends; the names take the new
// ones.
const ColorList* initConstants();

}  // namespace SharedClasses
