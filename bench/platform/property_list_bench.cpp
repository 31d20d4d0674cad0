// Property lists of 1 MiB, read and written. One of mixed content is to be read no slower than expat builds a plain
// tree of it, which leaves numbers, dates and data in their text form; one of data alone takes longer by the decoding.
// Dropping the results is not timed.
#include <benchmark/benchmark.h>
#include <expat.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/property_list.h"

namespace SharedClasses::platform {
namespace {

using List = Value::List;
using Dictionary = Value::Dictionary;

// What a program keeps of its devices, over and over until it fills a document of 1 MiB.
Value devices() {
  constexpr int kDevices = 1100;
  List devices;
  for (int number = 0; number < kDevices; ++number) {
    devices.push_back(
        Dictionary{{"name", "Lamp & fan of room " + std::to_string(number)},
                   {"address", "1A.2B." + std::to_string(number)},
                   {"level", number % 100},
                   {"lastLevel", number * 0.37},
                   {"isDimmable", number % 2 == 0},
                   {"lastSeen", Date{7e8 + number}},
                   {"record", Value::Data(48, static_cast<std::uint8_t>(number))},
                   {"groups", List{number, "Küche", "stairs"}},
                   {"notes", "Switched off at night; the motion sensor in the hall turns it on again."},
                   {"links", List{Dictionary{{"group", 1}, {"rampRate", 0.5}}, Dictionary{{"group", 2}}}}});
  }
  return Dictionary{{"devices", std::move(devices)}};
}

// Long texts and data, and numbers alone.
Value texts() {
  return List(16, Value(std::string(std::size_t{64} << 10, 'x')));
}

Value data() {
  return List(4, Value(Value::Data(std::size_t{190} << 10, 0x5A)));
}

Value numbers() {
  List numbers;
  for (int number = 0; number < 20000; ++number) {
    numbers.push_back(number);
    numbers.push_back(number * 1.37);
  }
  return numbers;
}

struct Node {
  std::string name;
  std::string text;
  std::vector<Node> children;
};

// The tree of `document`, built by expat's calls and a stack of what is open.
Node plainTree(const std::string& document) {
  std::vector<Node> open(1);
  XML_Parser parser = XML_ParserCreate("UTF-8");
  XML_SetUserData(parser, &open);
  XML_SetElementHandler(
      parser,
      [](void* nodes, const char* name, const char**) {
        static_cast<std::vector<Node>*>(nodes)->push_back({.name = name, .text = {}, .children = {}});
      },
      [](void* nodes, const char*) {
        auto& stack = *static_cast<std::vector<Node>*>(nodes);
        Node node = std::move(stack.back());
        stack.pop_back();
        stack.back().children.push_back(std::move(node));
      });
  XML_SetCharacterDataHandler(parser, [](void* nodes, const char* text, int length) {
    static_cast<std::vector<Node>*>(nodes)->back().text.append(text, static_cast<std::size_t>(length));
  });
  XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1);
  XML_ParserFree(parser);
  return std::move(open.front());
}

// Times `step`, and not the end of what it gives.
template <class Step>
void measure(const std::string& name, std::size_t bytes, Step step) {
  benchmark::RegisterBenchmark(name.c_str(), [bytes, step](benchmark::State& state) {
    for (auto _ : state) {
      std::optional result(step());
      benchmark::DoNotOptimize(result);
      state.PauseTiming();
      result.reset();
      state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
  });
}

const bool sRegistered = [] {
  const struct {
    const char* name;
    Value value;
  } kDocuments[] = {{"devices", devices()}, {"texts", texts()}, {"data", data()}, {"numbers", numbers()}};
  for (const auto& [name, value] : kDocuments) {
    const std::string document = propertyListAsXML(value).value();
    const std::string suffix = std::string("/") + name;
    measure("plainTree" + suffix, document.size(), [document] { return plainTree(document); });
    measure("propertyListFromXML" + suffix, document.size(), [document] { return propertyListFromXML(document); });
    const Value copy = value;
    measure("propertyListAsXML" + suffix, document.size(), [copy] { return propertyListAsXML(copy); });
  }
  return true;
}();

}  // namespace
}  // namespace SharedClasses::platform
