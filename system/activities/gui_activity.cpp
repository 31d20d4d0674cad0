#include "system/activities/gui_activity.h"

#include <algorithm>
#include <utility>

namespace SharedClasses {

GUIActivity::GUIActivity(GUIActivityArguments arguments)
    : Activity(std::move(arguments.activity)),
      mProgressBarWanted(arguments.progressWanted),
      mDisplayTitle(std::move(arguments.withDisplayString)),
      mVisible(!mDisplayTitle.value_or("").empty()) {}

GUIActivity::GUIActivity(ActivityFunctions functions, GUIActivityArguments arguments)
    : Activity(std::move(functions)),
      mProgressBarWanted(arguments.progressWanted),
      mDisplayTitle(std::move(arguments.withDisplayString)),
      mVisible(!mDisplayTitle.value_or("").empty()) {}

void GUIActivity::setProgress(std::int32_t percent) {
  mProgressPercent = std::clamp(percent, 0, 100);
}

}  // namespace SharedClasses
