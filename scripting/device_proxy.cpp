#include "scripting/device_proxy.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "platform/exceptions.h"
#include "platform/log.h"
#include "platform/text_format.h"

namespace SharedClasses {

namespace {

using platform::Value;

constexpr std::int32_t kDeepestUsualRequest = 10;

// The name of the class that `value` is or is of; empty for what is neither.
std::string nameOfClass(const Value& value) {
  if (const std::string* name = value.text()) {
    return *name;
  }
  const platform::ObjectPointer object = value.object();
  return object != nullptr ? object->className() : "";
}

// What stands under `key`; absent where nothing does.
Value entry(const Value::Dictionary& dictionary, std::string_view key) {
  const auto found = dictionary.find(key);
  return found != dictionary.end() ? found->second : Value();
}

Value answerOf(const platform::ObjectPointer& object, std::string_view selector,
               std::span<const Value> arguments = {}) {
  return object != nullptr ? object->performSelector(selector, arguments) : Value();
}

// A device while it is asked: held, since it may be replaced in the middle of its answer. Null where there is none, and
// where too many proxies on this thread wait for their devices already.
class AskedDevice {
 public:
  explicit AskedDevice(const platform::ObjectPointer& device)
      : mDevice(++sWaiting <= DeviceProxy::kMostInOneAnother ? device : nullptr) {
    if (mDevice != device) {
      platform::log("Too many device proxies wait for one another. The last one answers as without a device.");
    }
  }
  AskedDevice(const AskedDevice&) = delete;
  AskedDevice& operator=(const AskedDevice&) = delete;
  ~AskedDevice() { --sWaiting; }

  [[nodiscard]] const platform::ObjectPointer& get() const { return mDevice; }

 private:
  static thread_local int sWaiting;
  const platform::ObjectPointer mDevice;
};

thread_local int AskedDevice::sWaiting = 0;

// What the proxy performs itself. What it would pass to the device with the same arguments is not listed.
struct Operation {
  std::string_view selector;
  Value (*perform)(DeviceProxy& proxy, const Value& argument);
};

constexpr Operation kOperations[] = {
    {"class", [](DeviceProxy& proxy, const Value&) { return Value(proxy.class_()); }},
    {"classCode", [](DeviceProxy& proxy, const Value&) { return Value(proxy.classCode()); }},
    {"className", [](DeviceProxy& proxy, const Value&) { return Value(proxy.className()); }},
    {"cleanupDeviceInfoCustomView",
     [](DeviceProxy& proxy, const Value&) {
       proxy.cleanupDeviceInfoCustomView();
       return Value();
     }},
    {"customInfoViewHeight", [](DeviceProxy& proxy, const Value&) { return proxy.customInfoViewHeight(); }},
    {"description", [](DeviceProxy& proxy, const Value&) { return Value(proxy.description()); }},
    {"device", [](DeviceProxy& proxy, const Value&) { return Value(proxy.device()); }},
    {"isKindOfClass:",
     [](DeviceProxy& proxy, const Value& argument) { return Value(proxy.isKindOfClass(nameOfClass(argument))); }},
    {"objectSpecifier", [](DeviceProxy& proxy, const Value&) { return proxy.objectSpecifier(); }},
    {"orderedChannels", [](DeviceProxy& proxy, const Value&) { return Value(proxy.orderedChannels()); }},
    {"proxy", [](DeviceProxy& proxy, const Value&) { return Value(proxy.proxy()); }},
    {"respondsToSelector:",
     [](DeviceProxy& proxy, const Value& argument) {
       return Value(proxy.respondsToSelector(argument.text() != nullptr ? *argument.text() : ""));
     }},
    {"setDevice:",
     [](DeviceProxy& proxy, const Value& argument) {
       proxy.setDevice(argument.object());
       return Value();
     }},
    {"setupDeviceInfoCustomView:",
     [](DeviceProxy& proxy, const Value& argument) {
       proxy.setupDeviceInfoCustomView(argument);
       return Value();
     }},
    {"superclass",
     [](DeviceProxy& proxy, const Value&) { return proxy.device() != nullptr ? Value(proxy.superclass()) : Value(); }},
};

static_assert(std::ranges::is_sorted(kOperations, std::less{}, &Operation::selector));

}  // namespace

thread_local std::int32_t DeviceProxy::sDebugStackCount = 0;

DeviceProxy::DeviceProxy(std::string className, platform::FourCharCode classCode, platform::ObjectPointer device)
    : mClass(std::move(className)), mClassCode(classCode), mDevice(std::move(device)) {}

std::shared_ptr<DeviceProxy> DeviceProxy::initWithDictionary(const Value::Dictionary& dictionary) {
  std::string className;
  if (const auto thrown = platform::nameOfThrown([&] { className = nameOfClass(entry(dictionary, "subClass")); })) {
    platform::log("The class of a device proxy cannot be told: its object threw " + *thrown + ".");
  }
  const auto code = static_cast<platform::FourCharCode>(entry(dictionary, "classCode").integerValue().value_or(0));
  return std::shared_ptr<DeviceProxy>(
      new DeviceProxy(std::move(className), code, entry(dictionary, "device").object()));
}

void DeviceProxy::setDevice(platform::ObjectPointer device) {
  const std::shared_ptr<DeviceProxy> self = weak_from_this().lock();  // either device may be the last to hold it
  const AskedDevice asked(device);
  const platform::ObjectPointer former = std::exchange(mDevice, std::move(device));
  const Value argument = self;
  if (const auto thrown = platform::nameOfThrown([&] { answerOf(asked.get(), "setProxy:", {&argument, 1}); })) {
    platform::log("The device of a proxy threw " + *thrown + " at setProxy:.");
  }
}

std::string DeviceProxy::class_() const {
  struct Request {
    Request() { ++sDebugStackCount; }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;
    ~Request() { --sDebugStackCount; }
  };
  const Request request;
  if (sDebugStackCount > kDeepestUsualRequest) {
    platform::log(platform::filledFormat("In infinite recursion, %d levels deep.", {sDebugStackCount}));
  }
  return mClass;
}

std::string DeviceProxy::superclass() const {
  return nameOfClass(mDevice);
}

bool DeviceProxy::isKindOfClass(std::string_view name) const {
  if (name.empty()) {
    return false;
  }
  if (class_() == name) {
    return true;
  }
  const AskedDevice asked(mDevice);
  const platform::ObjectPointer& device = asked.get();
  const Value argument = name;
  const Value answer = answerOf(device, "isKindOfClass:", {&argument, 1});
  return answer.isAbsent() ? device != nullptr && device->className() == name : answer.booleanValue().value_or(false);
}

Value DeviceProxy::methodSignatureForSelector(std::string_view selector) const {
  const Value argument = selector;
  return askDevice("methodSignatureForSelector:", {&argument, 1});
}

bool DeviceProxy::respondsToSelector(std::string_view selector) const {
  bool responds = selector == "getFirstAndLastKeyViews:" || selector == "preferredUnitFor:";
  if (!responds) {
    const AskedDevice asked(mDevice);
    responds = asked.get() != nullptr && asked.get()->respondsToSelector(selector);
  }
  if (selector != "indicesOfObjectsByEvaluatingObjectSpecifier:") {
    platform::log(
        platform::filledFormat("DeviceProxy respondsToSelector: %@ %d", {selector, static_cast<int>(responds)}));
  }
  return responds;
}

Value DeviceProxy::performSelector(std::string_view selector, std::span<const Value> arguments) {
  const auto* operation = std::ranges::lower_bound(kOperations, selector, std::less{}, &Operation::selector);
  if (operation == std::end(kOperations) || operation->selector != selector) {
    return forwardInvocation(selector, arguments);
  }
  return operation->perform(*this, arguments.empty() ? Value() : arguments.front());
}

Value DeviceProxy::forwardInvocation(std::string_view selector, std::span<const Value> arguments) {
  const AskedDevice asked(mDevice);
  if (selector == "_scriptingValueForSpecifier:") {
    const Value specifier = arguments.empty() ? Value() : arguments.front();
    platform::log(platform::filledFormat("problem arg: %@", {specifier.description()}));
    Value key;
    // The log alone wants the key: a specifier that throws does not keep the message from the device.
    static_cast<void>(platform::nameOfThrown([&] { key = answerOf(specifier.object(), "key"); }));
    platform::log(platform::filledFormat("This is the obj specr key: %@", {key.description()}));
  }
  return answerOf(asked.get(), selector, arguments);
}

Value DeviceProxy::objectSpecifier() const {
  Value specifier = askDevice("objectSpecifier");
  platform::log(platform::filledFormat("DeviceProxy objectSpecifier: %@", {specifier.description()}));
  return specifier;
}

Value DeviceProxy::specifierDescriptor() const {
  return askDevice("specifierDescriptor");
}

Value DeviceProxy::valueForUndefinedKey(std::string_view key) {
  const Value argument = key;
  return askDevice("valueForUndefinedKey:", {&argument, 1});
}

void DeviceProxy::setValueForUndefinedKey(const Value& value, std::string_view key) {
  const Value arguments[] = {value, key};
  askDevice("setValue:forUndefinedKey:", arguments);
}

std::string DeviceProxy::description() const {
  const std::string shownClass = mClass;  // the device may let go of this in the middle of its answer
  const AskedDevice asked(mDevice);
  const std::string shown = asked.get() != nullptr ? asked.get()->description() : "(null)";
  return platform::filledFormat("%@: %@", {shownClass, shown});
}

Value DeviceProxy::preferredUnitFor(const Value& quantity) const {
  return askDevice("preferredUnitFor:", {&quantity, 1});
}

Value::List DeviceProxy::orderedChannels() const {
  return {"A", "B"};
}

Value DeviceProxy::customInfoViewHeight() const {
  return answerOf(askDevice("model").object(), "customInfoViewHeight");
}

void DeviceProxy::setDeviceInfoCustomDisclosureView(std::shared_ptr<platform::View> view) {
  mDeviceInfoCustomDisclosureView.swap(view);
}

void DeviceProxy::setupDeviceInfoCustomView(const Value& /*view*/) {}

void DeviceProxy::cleanupDeviceInfoCustomView() {}

Value DeviceProxy::askDevice(std::string_view selector, std::span<const Value> arguments) const {
  return answerOf(AskedDevice(mDevice).get(), selector, arguments);
}

}  // namespace SharedClasses
