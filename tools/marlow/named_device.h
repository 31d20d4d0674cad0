// A device that is nothing but its name, as the wording operations ask for it.
#pragma once

#include <string>
#include <utility>

#include "platform/object.h"
#include "platform/value.h"

namespace SharedClasses::marlow {

class NamedDevice : public platform::Object {
 public:
  explicit NamedDevice(std::string name) : mName(std::move(name)) {}

  [[nodiscard]] std::string className() const override { return "NamedDevice"; }
  [[nodiscard]] std::string description() const override { return mName; }
  [[nodiscard]] bool respondsToSelector(std::string_view selector) const override { return selector == "name"; }
  platform::Value performSelector(std::string_view selector, std::span<const platform::Value>) override {
    return selector == "name" ? platform::Value(mName) : platform::Value();
  }

 private:
  std::string mName;
};

}  // namespace SharedClasses::marlow
