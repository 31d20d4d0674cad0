// The arguments of a command, taken apart: options such as `--json` or `--devices FILE`, and operands.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace SharedClasses::marlow {

struct OptionSpecification {
  std::string_view name;  // with its dashes: "--devices"
  bool takesValue;
};

class Arguments {
 public:
  // Takes `words` apart by `options`, to which --json and --help are added. "-h" is --help, "--" ends the options;
  // "--name=value" and "--name value" are the same. A word of "-" and digits is an operand where `negativeNumbers` are.
  // Absent when a word is no option of the command or a value is missing; `*error` says which, and of a word that is
  // like no option, such as "-5" or "-MTWTF-", that it has to stand behind "--", unless `negativeNumbers`.
  [[nodiscard]] static std::optional<Arguments> parse(std::span<const std::string_view> words,
                                                      std::span<const OptionSpecification> options, std::string* error,
                                                      bool negativeNumbers = false);

  [[nodiscard]] bool has(std::string_view option) const { return mOptions.find(option) != mOptions.end(); }
  [[nodiscard]] bool wantsJSON() const { return has("--json"); }

  // The value of an option that was given; of several the last.
  [[nodiscard]] std::optional<std::string> value(std::string_view option) const;

  [[nodiscard]] const std::vector<std::string>& operands() const { return mOperands; }

 private:
  std::map<std::string, std::string, std::less<>> mOptions;
  std::vector<std::string> mOperands;
};

}  // namespace SharedClasses::marlow
