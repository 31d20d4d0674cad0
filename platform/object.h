// A thing with behaviour that a program hands to the library: a device, a callback, a proxied device.
// It is asked by selector, so that messages can be forwarded to it without knowing its C++ type.
// The library never locks around a call: an object is asked on the thread that called the library.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace SharedClasses::platform {

class Value;

class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  // The name of the object's class, such as "DimAction".
  [[nodiscard]] virtual std::string className() const = 0;

  // One line for the log; the class name unless the object says more.
  [[nodiscard]] virtual std::string description() const { return className(); }

  // Whether `performSelector` answers `selector`. Selectors are written with their colons: "name", "setProxy:".
  [[nodiscard]] virtual bool respondsToSelector(std::string_view selector) const = 0;

  // Performs `selector` with `arguments` and returns its result; an absent value for one that returns nothing and for
  // a selector that the object does not know. May throw: the library catches it at the call.
  virtual Value performSelector(std::string_view selector, std::span<const Value> arguments) = 0;
};

using ObjectPointer = std::shared_ptr<Object>;

}  // namespace SharedClasses::platform
