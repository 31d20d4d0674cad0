#include "wording/result_messages.h"

#include "system/processes/process_detection.h"
#include "wording/localized_strings.h"

namespace SharedClasses::Utilities {

namespace {

// Kept: the numbers from -99 to -50 that are missing here have no text; a driver that gives one shows "Error -88".
constexpr ResultMessageRow kTable[] = {
    {-536870203, Rival::Indigo, "keyIndigoUsingControllerError"},  // 0xE00002C5, exclusive access refused
    {-536870203, Rival::XTension, "keyXTensionUsingControllerError"},
    {-536870203, Rival::Classic, "keyDeniedByClassicError"},
    {-536870203, Rival::Nobody, "keyExclusiveAccessError"},
    {-60032, Rival::Nobody, "keyAuthorizationProblemError"},
    {-60031, Rival::Nobody, "keyAuthorizationProblemError"},
    {-1712, Rival::Nobody, "keyAppleEventTimedOutError"},
    {-99, Rival::Nobody, "keyCommPortNotFoundError"},
    {-98, Rival::Nobody, "keyCommPortFailedError"},
    {-97, Rival::Classic, "keyDeniedByClassicError"},
    {-97, Rival::Nobody, "keyAppExcludedError"},
    {-96, Rival::Nobody, "keyControllerNotConnectedError"},
    {-95, Rival::Nobody, "keyControllerNotRespondingError"},
    {-94, Rival::Nobody, "keyIndigoUsingControllerError"},
    {-93, Rival::Nobody, "keyXTensionUsingControllerError"},
    {-92, Rival::Nobody, "keyDeviceNotRespondingError"},
    {-89, Rival::Nobody, "keyControllerConfusedError"},
    {-87, Rival::Nobody, "keyControllerBusyError"},
    {-78, Rival::Nobody, "keyPlugInFailedToStartError"},
    {-72, Rival::Nobody, "keyParamError"},
    {-71, Rival::Nobody, "keyNoDeviceSpecifiedError"},
    {-70, Rival::Nobody, "keyNoDeviceFoundErrorFormat"},
    {-60, Rival::Nobody, "keyInvalidCommandError"},
    {-59, Rival::Nobody, "keyInvalidScheduleError"},
    {-58, Rival::Nobody, "keyScheduleExceedsControllerMemoryError"},
    {-55, Rival::Nobody, "keyBadHouseCodeError"},
    {-54, Rival::Nobody, "keyDeviceAddressError"},
    {-50, Rival::Nobody, "keyActionNotSupportedByDeviceError"},
    {0, Rival::Nobody, ""},
    {22, Rival::Nobody, "keyCommPortInvalidSettingsError"},
    {35, Rival::Nobody, "keyCommPortUnavailableError"},  // Kept: not the EAGAIN of Linux, which is 11
    {125, Rival::Nobody, "keyAuthorizationProblemError"},
    {126, Rival::Classic, "keyDeniedByClassicError"},
    {126, Rival::Nobody, "keyExclusiveAccessError"},
    {127, Rival::Nobody, "keyAppleEventTimedOutError"},
};

bool holds(Rival rival) {
  switch (rival) {
    case Rival::Nobody:
      return true;
    case Rival::Indigo:
      return isIndigoRunning();
    case Rival::XTension:
      return isXTensionRunning();
    case Rival::Classic:
      return isClassicRunning();
  }
  return false;
}

}  // namespace

std::span<const ResultMessageRow> resultMessageTable() {
  return kTable;
}

std::string stringForResult(std::int32_t result) {
  for (const ResultMessageRow& row : kTable) {
    if (row.result == result && holds(row.rival)) {
      return row.key.empty() ? std::string("OK") : std::string(viewOfString(row.key));
    }
  }
  return "Error " + std::to_string(result);
}

}  // namespace SharedClasses::Utilities
