#include "sun/machine_location.h"

#include "platform/machine_location.h"

namespace SharedClasses::Utilities {

void guessBestLatitudeAndLogitude(double* latitude, double* logitude) {
  const platform::Location location = platform::machineLocation();
  if (latitude != nullptr) {
    *latitude = location.latitude;
  }
  if (logitude != nullptr) {
    *logitude = location.longitude;
  }
}

}  // namespace SharedClasses::Utilities
