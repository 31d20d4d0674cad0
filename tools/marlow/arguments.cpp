#include "tools/marlow/arguments.h"

#include <algorithm>

namespace SharedClasses::marlow {

namespace {

constexpr OptionSpecification kCommonOptions[] = {{"--json", false}, {"--help", false}};

const OptionSpecification* specificationOf(std::string_view name, std::span<const OptionSpecification> own) {
  for (const std::span<const OptionSpecification> list : {own, std::span<const OptionSpecification>(kCommonOptions)}) {
    const auto found = std::ranges::find(list, name, &OptionSpecification::name);
    if (found != list.end()) {
      return &*found;
    }
  }
  return nullptr;
}

// "-94"
bool isNegativeNumber(std::string_view word) {
  return word.size() > 1 && word[0] == '-' && word.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

// As all options but -h do.
bool looksLikeOption(std::string_view word) {
  return word.size() > 2 && word.starts_with("--") && word[2] >= 'a' && word[2] <= 'z';
}

}  // namespace

std::optional<Arguments> Arguments::parse(std::span<const std::string_view> words,
                                          std::span<const OptionSpecification> options, std::string* error,
                                          bool negativeNumbers) {
  Arguments arguments;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string_view word = words[i];
    if (word == "--") {
      arguments.mOperands.insert(arguments.mOperands.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                                 words.end());
      break;
    }
    if (word == "-h") {
      arguments.mOptions.emplace("--help", "");
      continue;
    }
    if (!word.starts_with('-') || word == "-" || (negativeNumbers && isNegativeNumber(word))) {
      arguments.mOperands.emplace_back(word);
      continue;
    }
    const std::size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    const OptionSpecification* option = specificationOf(name, options);
    if (option == nullptr) {
      *error = "unknown option " + std::string(name);
      if (!negativeNumbers && !looksLikeOption(word)) {
        *error += "; an operand that begins with - stands behind --";
      }
      return std::nullopt;
    }
    std::string value;
    if (equals != std::string_view::npos) {
      value = word.substr(equals + 1);
      if (!option->takesValue) {
        *error = std::string(name) + " takes no value";
        return std::nullopt;
      }
    } else if (option->takesValue) {
      if (i + 1 == words.size()) {
        *error = std::string(name) + " needs a value";
        return std::nullopt;
      }
      value = words[++i];
    }
    arguments.mOptions.insert_or_assign(std::string(name), std::move(value));
  }
  return arguments;
}

std::optional<std::string> Arguments::value(std::string_view option) const {
  const auto found = mOptions.find(option);
  return found == mOptions.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace SharedClasses::marlow
