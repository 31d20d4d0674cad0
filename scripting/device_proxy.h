// A stand-in for a device towards scripting and the user interface: it shows itself as an object of a chosen class,
// answers a few questions itself, and passes every other message on to the device, unchanged, with whatever that
// returns or throws. Asked on one thread at a time, like the device that it stands for. It logs what its scripting
// paths ask.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/four_char_code.h"
#include "platform/object.h"
#include "platform/value.h"
#include "platform/view.h"

namespace SharedClasses {

// What platform::Object has no operation for, the device is asked through performSelector. Where there is no device,
// its answers are absent, no and empty. What the device throws passes through, save where it is said to be logged.
class DeviceProxy : public platform::Object, public std::enable_shared_from_this<DeviceProxy> {
 public:
  // How many proxies may wait for their devices in one another on a thread. The next one answers as without a device,
  // which is logged, so that a message ends also where a proxy leads back to itself.
  static constexpr int kMostInOneAnother = 100;

  // `initWithDictionary:`
  // Takes the class from "subClass" (its name, or an object of which the class is meant), the scripting class code from
  // "classCode" (a number; 0 for none, also for a text), and the device from "device" (none for what is no object).
  // A class that is not given is shown as ""; so is that of an object that throws when it is asked, which is logged.
  // Never null.
  // Kept: codes are cut to their low 32 bits, so that one beyond them shows another class.
  [[nodiscard]] static std::shared_ptr<DeviceProxy> initWithDictionary(const platform::Value::Dictionary& dictionary);

  ~DeviceProxy() override = default;

  // The device that is stood for; null for none.
  [[nodiscard]] platform::ObjectPointer device() const { return mDevice; }
  // Stands for `device` from now on, and sends it "setProxy:" with this; what it throws there is logged. The former
  // device is let go after that. A device that keeps its proxy keeps itself: it should hold it weakly.
  void setDevice(platform::ObjectPointer device);

  // Null while no shared_ptr owns it.
  [[nodiscard]] std::shared_ptr<DeviceProxy> proxy() { return weak_from_this().lock(); }

  // `class`
  // The class that the proxy shows. Beyond ten such requests in one another on one thread, each logs how deep they are.
  // Kept: nothing that is asked here asks for the class again, so that only a subclass can make it log.
  [[nodiscard]] std::string class_() const;
  // The class of the device; "" without one.
  [[nodiscard]] std::string superclass() const;
  // The name of the class that the proxy shows.
  [[nodiscard]] std::string className() const override { return mClass; }
  [[nodiscard]] platform::FourCharCode classCode() const { return mClassCode; }
  // True for the class that the proxy shows; else as the device answers, which is asked with the name as a text (any
  // number but 0 is yes, other values than numbers are no), or by its class where it does not. False for "", which
  // names no class.
  [[nodiscard]] bool isKindOfClass(std::string_view name) const;

  // As the device answers.
  [[nodiscard]] platform::Value methodSignatureForSelector(std::string_view selector) const;

  // Yes to "getFirstAndLastKeyViews:" and "preferredUnitFor:"; else as the device answers. Each answer is logged, save
  // that for "indicesOfObjectsByEvaluatingObjectSpecifier:".
  // Kept: what the proxy answers itself is not counted, so that it may perform a selector that it denies.
  [[nodiscard]] bool respondsToSelector(std::string_view selector) const override;

  // Performs the operations of this class under their own selectors ("class", "isKindOfClass:", "setDevice:" and so on;
  // of an argument that is not given, or of another kind, as of an absent one, so that "setDevice:" with a text leaves
  // none; further ones are passed over), and forwards every other one.
  // "isKindOfClass:" takes a name or an object of which the class is meant. "superclass" is absent without a device.
  // "forwardInvocation:" and the view's are forwarded too, since no value is an invocation or a view, and so are
  // "initWithDictionary:" and "dealloc": a proxy is made and let go by its pointers alone.
  platform::Value performSelector(std::string_view selector, std::span<const platform::Value> arguments) override;

  // `forwardInvocation:`
  // Has the device perform `selector`. For "_scriptingValueForSpecifier:", logs the specifier and its key first; a
  // specifier that throws has no key.
  platform::Value forwardInvocation(std::string_view selector, std::span<const platform::Value> arguments);

  // The device's own, which is logged.
  [[nodiscard]] platform::Value objectSpecifier() const;
  // As the device answers.
  [[nodiscard]] platform::Value specifierDescriptor() const;
  platform::Value valueForUndefinedKey(std::string_view key);
  // `setValue:forUndefinedKey:`
  // Passed to the device.
  void setValueForUndefinedKey(const platform::Value& value, std::string_view key);

  // The class that the proxy shows, and the device's description, "(null)" without a device: "DimmerProxy: Hall lamp".
  [[nodiscard]] std::string description() const override;

  // As the device answers.
  [[nodiscard]] platform::Value preferredUnitFor(const platform::Value& quantity) const;
  // "A" and "B", whatever the device.
  [[nodiscard]] platform::Value::List orderedChannels() const;
  // As the device's model answers.
  [[nodiscard]] platform::Value customInfoViewHeight() const;
  // A view that the programs keep with the device's information; null for none, which is the start.
  [[nodiscard]] std::shared_ptr<platform::View> deviceInfoCustomDisclosureView() const {
    return mDeviceInfoCustomDisclosureView;
  }
  void setDeviceInfoCustomDisclosureView(std::shared_ptr<platform::View> view);
  // They do nothing.
  void setupDeviceInfoCustomView(const platform::Value& view);
  void cleanupDeviceInfoCustomView();

 protected:
  // A subclass too must be owned by a shared_ptr before setDevice() and proxy() are called: the device is sent that.
  DeviceProxy(std::string className, platform::FourCharCode classCode, platform::ObjectPointer device);

  // How many requests for a class stand in one another on this thread. For subclasses that ask within an answer.
  static thread_local std::int32_t sDebugStackCount;

 private:
  platform::Value askDevice(std::string_view selector, std::span<const platform::Value> arguments = {}) const;

  std::string mClass;
  platform::FourCharCode mClassCode;
  platform::ObjectPointer mDevice;  // null for none
  std::shared_ptr<platform::View> mDeviceInfoCustomDisclosureView;
};

}  // namespace SharedClasses
