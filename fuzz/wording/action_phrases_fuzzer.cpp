// Any devices, code, tense and amount make a sentence: well-formed UTF-8 that ends in a period.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "platform/text.h"
#include "tests/support/main_bundle.h"
#include "wording/action_phrases.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  SharedClasses::tests::useShippedTexts();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace SharedClasses;
  FuzzedDataProvider input(bytes, size);
  const std::span<const ActionCodeRow> codes = actionCodeTable();
  const auto row = input.ConsumeIntegralInRange<std::size_t>(0, codes.size());
  Utilities::LogStringArguments arguments;
  arguments.actionCode = row < codes.size() ? codes[row].code : input.ConsumeIntegral<ActionCode>();
  arguments.usingTense = input.ConsumeIntegralInRange(-3, 5);
  arguments.preposition = input.ConsumeIntegralInRange(-1, 4);
  if (input.ConsumeBool()) {
    arguments.amount = input.ConsumeBool() ? input.ConsumeFloatingPoint<double>() : 40.5;
  }
  const platform::Value::Dictionary parameters = {{"extendedBytes", input.ConsumeRandomLengthString()}};
  arguments.andParameters = input.ConsumeBool() ? &parameters : nullptr;
  platform::Value::List devices;
  while (input.remaining_bytes() > 0) {
    devices.emplace_back(input.ConsumeRandomLengthString());
  }
  arguments.devices = devices;
  const std::string sentence = Utilities::logStringForDevices(arguments);
  if (!sentence.ends_with('.') || !platform::isValidUTF8(sentence)) {
    std::abort();
  }
  return 0;
}
