// An activity with what a display shows of it: a title, a status line, progress, and whether it is to be seen.
// Everything here belongs to the thread whose run loop ticks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "system/activities/activity.h"

namespace SharedClasses {

struct GUIActivityArguments {
  ActivityArguments activity = {};
  bool progressWanted = false;                        // whether a progress bar is
  std::optional<std::string> withDisplayString = {};  // the title; absent or empty: the activity is not shown
  double suppressingDisplayFor = 0.0;                 // seconds; Kept: not used, it is shown from the start
};

class GUIActivity : public Activity {
 public:
  // `init:callBackObject:selector:abortSelector:userInfo:progressWanted:withDisplayString:suppressingDisplayFor:`
  explicit GUIActivity(GUIActivityArguments arguments);
  // The same for callers that would rather pass functions: `arguments.activity` is not looked at.
  GUIActivity(ActivityFunctions functions, GUIActivityArguments arguments);

  [[nodiscard]] bool progressBarWanted() const { return mProgressBarWanted; }
  [[nodiscard]] std::int32_t progress() const { return mProgressPercent; }  // 0 to 100
  void setProgress(std::int32_t percent);                                   // brought into 0 to 100
  [[nodiscard]] std::string displayTitle() const { return mDisplayTitle.value_or(""); }
  [[nodiscard]] const std::optional<std::string>& displayStatus() const { return mDisplayStatus; }
  void setDisplayStatus(std::optional<std::string> status) { mDisplayStatus = std::move(status); }
  [[nodiscard]] bool isVisible() const { return mVisible; }
  void setVisible(bool visible) { mVisible = visible; }

  [[nodiscard]] std::string className() const override { return "GUIActivity"; }

 private:
  bool mProgressBarWanted;
  std::int32_t mProgressPercent = 0;
  std::optional<std::string> mDisplayTitle;
  std::optional<std::string> mDisplayStatus;
  bool mVisible;
};

}  // namespace SharedClasses
