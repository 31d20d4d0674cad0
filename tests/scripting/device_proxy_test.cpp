#include "scripting/device_proxy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <thread>

#include "tests/support/captured_log.h"

namespace SharedClasses {
namespace {

using platform::Value;
using List = Value::List;
using Messages = std::vector<std::string>;

// An object that keeps what it is sent and answers as its test says.
struct Device : platform::Object {
  using Answer = std::function<Value(std::string_view selector, const List& arguments)>;
  explicit Device(Answer itsAnswer = nullptr) : answer(std::move(itsAnswer)) {}
  std::string className() const override { return "Dimmer"; }
  std::string description() const override { return "Hall lamp"; }
  bool respondsToSelector(std::string_view selector) const override { return selector.size() % 3 == 0; }
  Value performSelector(std::string_view selector, std::span<const Value> arguments) override {
    messages.emplace_back(selector, List(arguments.begin(), arguments.end()));
    return answer ? answer(selector, messages.back().second) : Value();
  }
  Answer answer;
  std::vector<std::pair<std::string, List>> messages;
};

std::shared_ptr<DeviceProxy> proxyOf(const platform::ObjectPointer& device) {
  return DeviceProxy::initWithDictionary({{"subClass", "Lamp"}, {"device", device}});
}

// What `object` gives or throws.
std::string outcome(platform::Object& object, std::string_view selector, std::span<const Value> arguments) {
  try {
    return object.performSelector(selector, arguments).description();
  } catch (const std::runtime_error& error) {
    return std::string("threw ") + error.what();
  }
}

TEST(DeviceProxy, AnswersAsItsDeviceWhateverItIsAsked) {
  const auto answer = [](std::string_view selector, const List& arguments) {
    const std::size_t kind = (selector.size() + arguments.size()) % 4;
    return kind == 0 ? throw std::runtime_error(std::string(selector)) : List(kind - 1, List{selector, arguments});
  };
  const auto direct = std::make_shared<Device>(answer), proxied = std::make_shared<Device>(answer);
  const auto proxy = proxyOf(proxied);
  const List values = {{}, 1, "level", List{2}, platform::Color{}, std::make_shared<Device>()};
  constexpr std::string_view kWords[] = {"_scriptingValueForSpecifier:", "valueForUndefinedKey:", "name",
                                         "\xFF%@:", ""};
  const tests::CapturedLog log;
  std::mt19937 random(102);
  for (int message = 0; message < 500; ++message) {
    std::string selector;
    for (auto words = random() % 3 + 1; words > 0; --words) {
      selector += kWords[random() % std::size(kWords)];
    }
    SCOPED_TRACE(selector);
    List arguments(random() % 4);
    std::generate(arguments.begin(), arguments.end(), [&] { return values[random() % values.size()]; });
    EXPECT_EQ(outcome(*proxy, selector, arguments), outcome(*direct, selector, arguments));
    EXPECT_EQ(proxied->messages, direct->messages);
    EXPECT_EQ(proxy->respondsToSelector(selector), direct->respondsToSelector(selector));
  }
}

TEST(DeviceProxy, AnswersItsOwnQuestionsItself) {
  const Value model = std::make_shared<Device>([](auto selector, auto&) { return selector; });
  const auto device = std::make_shared<Device>([&](auto selector, const List& arguments) {
    if (selector == "isKindOfClass:") {
      return arguments[0] == Value("Switch") ? Value(true) : Value();
    }
    return selector == "model" ? model : Value(selector);
  });
  const std::string asked = "DeviceProxy respondsToSelector: ", specifier = "_scriptingValueForSpecifier:";
  const struct {
    std::string_view selector;
    Value argument;
    std::string result, withoutDevice;
    Messages log = {};
  } rows[] = {
      {"class", {}, "Lamp", "Lamp"},
      {"superclass", {}, "Dimmer", "(null)"},
      {"description", {}, "Lamp: Hall lamp", "Lamp: (null)"},
      {"device", {}, "Hall lamp", "(null)"},
      {"orderedChannels", {}, R"(("A", "B"))", R"(("A", "B"))"},
      {"isKindOfClass:", "Lamp", "YES", "YES"},
      {"isKindOfClass:", "Switch", "YES", "NO"},
      {"isKindOfClass:", model, "YES", "NO"},  // of its class; the device has no answer
      {"isKindOfClass:", {}, "NO", "NO"},
      {"respondsToSelector:", "class", "NO", "NO", {asked + "class 0"}},  // which it performs
      {"customInfoViewHeight", {}, "customInfoViewHeight", "(null)"},
      {"setupDeviceInfoCustomView:", 1, "(null)", "(null)"},
      {"respondsToSelector:", "abc", "YES", "NO", {asked + "abc 1"}},
      {"respondsToSelector:", "preferredUnitFor:", "YES", "YES", {asked + "preferredUnitFor: 1"}},
      {"respondsToSelector:", "getFirstAndLastKeyViews:", "YES", "YES", {asked + "getFirstAndLastKeyViews: 1"}},
      {"respondsToSelector:", "indicesOfObjectsByEvaluatingObjectSpecifier:", "NO", "NO"},
      {"objectSpecifier", {}, "objectSpecifier", "(null)", {"DeviceProxy objectSpecifier: objectSpecifier"}},
      {specifier, model, specifier, "(null)", {"problem arg: Hall lamp", "This is the obj specr key: key"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.selector) + row.argument.description());
    const tests::CapturedLog log;
    EXPECT_EQ(outcome(*proxyOf(device), row.selector, {&row.argument, 1}), row.result);
    EXPECT_EQ(log.messages(), row.log);
    EXPECT_EQ(outcome(*proxyOf(nullptr), row.selector, {&row.argument, 1}), row.withoutDevice);
  }
}

TEST(DeviceProxy, IntroducesItselfToItsDevice) {
  const tests::CapturedLog log;
  const auto faulty = std::make_shared<Device>([](auto, auto&) -> Value { throw 1; });
  const auto proxy = DeviceProxy::initWithDictionary({{"subClass", faulty}, {"classCode", 0x1'0000'0002}});
  EXPECT_EQ(proxy->className() + std::to_string(proxy->classCode()), "Dimmer2");
  EXPECT_FALSE(DeviceProxy::initWithDictionary({})->isKindOfClass(""));
  proxy->setDevice(faulty);
  EXPECT_EQ(faulty->messages.at(0), std::pair(std::string("setProxy:"), List{proxy}));
  EXPECT_EQ(log.messages(), Messages{"The device of a proxy threw an object that is no exception at setProxy:."});
  faulty->messages.clear();  // which hold the proxy
}

TEST(DeviceProxy, MayLoseItsDeviceAndItselfInTheMiddleOfAMessage) {
  for (const std::string_view selector : {"name", "isKindOfClass:", "objectSpecifier", "customInfoViewHeight"}) {
    SCOPED_TRACE(selector);
    const tests::CapturedLog log;
    std::shared_ptr<DeviceProxy> proxy;
    proxy = proxyOf(std::make_shared<Device>([&, word = std::string("a word that is not short")](auto, auto&) {
      if (proxy != nullptr) {
        proxy->setDevice(nullptr);
        proxy = nullptr;
      }
      return word;
    }));
    const Value argument = "Switch";
    EXPECT_NE(outcome(*proxy, selector, {&argument, 1}), "");
    EXPECT_EQ(proxy, nullptr);
  }
}

TEST(DeviceProxy, DescribesItselfThoughItsDeviceLetsGoOfIt) {
  struct Leaver : Device {
    explicit Leaver(std::shared_ptr<DeviceProxy>& itsProxy) : proxy(itsProxy) {}
    std::string description() const override {
      proxy = nullptr;
      return "gone";
    }
    std::shared_ptr<DeviceProxy>& proxy;
  };
  std::shared_ptr<DeviceProxy> proxy;
  proxy = DeviceProxy::initWithDictionary(
      {{"subClass", "A class of a name that is not short"}, {"device", std::make_shared<Leaver>(proxy)}});
  EXPECT_EQ(proxy->description(), "A class of a name that is not short: gone");
}

TEST(DeviceProxy, AMessageEndsWhereProxiesLeadBackToThemselvesOrAreTooMany) {
  const tests::CapturedLog log;
  const auto loop = proxyOf(nullptr);
  loop->setDevice(loop);
  EXPECT_TRUE(loop->performSelector("name", {}).isAbsent());
  EXPECT_FALSE(loop->isKindOfClass("Dimmer"));
  EXPECT_FALSE(loop->description().empty());
  loop->setDevice(nullptr);
  EXPECT_EQ(log.messages().size(), 4U);
  for (const int length : {DeviceProxy::kMostInOneAnother, DeviceProxy::kMostInOneAnother + 1}) {
    platform::ObjectPointer chain = std::make_shared<Device>([](std::string_view, const List&) { return true; });
    for (int i = 0; i < length; ++i) {
      chain = proxyOf(chain);
    }
    EXPECT_EQ(chain->performSelector("name", {}).isAbsent(), length > DeviceProxy::kMostInOneAnother);
  }
}

struct DeepProxy : DeviceProxy {
  static std::int32_t& depth() { return sDebugStackCount; }
};

TEST(DeviceProxy, LogsRequestsForItsClassBeyondTenInOneAnotherOnOneThread) {
  const auto proxy = proxyOf(nullptr);
  const tests::CapturedLog log;
  for (const std::int32_t around : {9, 10, 11}) {
    DeepProxy::depth() = around;
    EXPECT_EQ(proxy->class_(), "Lamp");
    EXPECT_EQ(DeepProxy::depth(), around);
  }
  std::thread([&] { EXPECT_EQ(proxy->class_(), "Lamp"); }).join();
  DeepProxy::depth() = 0;
  EXPECT_EQ(log.messages(),
            (Messages{"In infinite recursion, 11 levels deep.", "In infinite recursion, 12 levels deep."}));
}

}  // namespace
}  // namespace SharedClasses
