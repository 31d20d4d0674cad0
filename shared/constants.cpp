#include "shared/constants.h"

namespace SharedClasses {

constinit const platform::Color* kBlueColor = nullptr;
constinit const platform::Color* kGreenColor = nullptr;
constinit const platform::Color* kPurpleColor = nullptr;
constinit const platform::Color* kMarlowPurpleColor = nullptr;
constinit const platform::Color* kRedColor = nullptr;
constinit const platform::Color* kMagentaColor = nullptr;
constinit const ColorList* kDefaultColors = nullptr;

namespace {

// What one call makes. Never freed, since programs keep the colours; each set holds the one before it.
struct ColorSet {
  std::array<platform::Color, 6> colors;
  ColorList list;
  const ColorSet* previous;
};

constinit const ColorSet* sNewestSet = nullptr;

}  // namespace

const ColorList* initConstants() {
  auto* const set = new ColorSet{.colors = {{{2 / 255.0, 82 / 255.0, 212 / 255.0},
                                             {44 / 255.0, 161 / 255.0, 11 / 255.0},
                                             {73 / 255.0, 43 / 255.0, 161 / 255.0},
                                             {0.4, 0.0, 0.2},
                                             {196 / 255.0, 30 / 255.0, 58 / 255.0},
                                             {176 / 255.0, 39 / 255.0, 174 / 255.0}}},
                                 .list = {},
                                 .previous = sNewestSet};
  for (std::size_t i = 0; i < set->list.size(); ++i) {
    set->list[i] = &set->colors[i];
  }
  sNewestSet = set;
  kBlueColor = set->list[0];
  kGreenColor = set->list[1];
  kPurpleColor = set->list[2];
  kMarlowPurpleColor = set->list[3];
  kRedColor = set->list[4];
  kMagentaColor = set->list[5];
  kDefaultColors = &set->list;
  return kDefaultColors;
}

}  // namespace SharedClasses
