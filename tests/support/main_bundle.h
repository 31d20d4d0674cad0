// Makes a bundle of the test's own the main one, in English, and puts the shipped resources back at its end.
#pragma once

#include <memory>
#include <string>

#include "platform/bundle.h"

namespace SharedClasses::tests {

// The library's own texts, whatever the environment says.
inline void useShippedTexts() {
  platform::Bundle::setMain(std::make_unique<const platform::Bundle>(std::string(SOURCE_FOLDER "/resources"),
                                                                     std::vector<std::string>{"en"}));
}

class MainBundle {
 public:
  explicit MainBundle(const std::string& folder, const std::vector<std::string>& languages = {"en"}) {
    platform::Bundle::setMain(std::make_unique<const platform::Bundle>(folder, languages));
  }
  MainBundle(const MainBundle&) = delete;
  MainBundle& operator=(const MainBundle&) = delete;
  ~MainBundle() { useShippedTexts(); }
};

}  // namespace SharedClasses::tests
