// Where the machine stands, as the sun computations and the first preferences take it.
#pragma once

namespace SharedClasses::Utilities {

// `guessBestLatitude:andLogitude:` — fills what is not null with the machine's location in degrees, positive north and
// east: 0, 0 where nobody knows it. See platform/machine_location.h for where it is looked up. Safe on any thread.
// Kept: the missing "n" of the name.
void guessBestLatitudeAndLogitude(double* latitude, double* logitude);

}  // namespace SharedClasses::Utilities
