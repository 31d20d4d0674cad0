#include "platform/machine_location.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>

#include "platform/location_sources.h"
#include "sun/machine_location.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::platform {
namespace {

constexpr Location kNowhere{999, 999};

struct Row {
  const char* name;
  std::string_view text;
  Location expected = kNowhere;
};

void expectPlaces(std::optional<Location> (*parse)(std::string_view text), std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Location place = parse(row.text).value_or(kNowhere);
    EXPECT_NEAR(place.latitude, row.expected.latitude, 0.00005);
    EXPECT_NEAR(place.longitude, row.expected.longitude, 0.00005);
  }
}

TEST(MachineLocation, TheGeolocationFileIsFourNumbersOrNothing) {
  expectPlaces(locationInGeolocation,
               {{"comments",
                 "# Example\n40.6893129   # latitude\n-74.0445531\n96            # altitude\n1.83\n",
                 {40.6893129, -74.0445531}},
                {"signs, blanks, CRLF, no last line break", "\r\n \t+52.5\r\n\t+13.25 \r\n0\r\n10", {52.5, 13.25}},
                {"the very ends", "-90\n180\n0\n0\n", {-90, 180}},
                {"cut within", "52.5\n13.2\n30\n"},
                {"a decimal comma", "52,5\n13\n0\n0\n"},
                {"too far north", "90.001\n13\n0\n0\n"},
                {"endless", "52\n13\ninf\n0\n"}});
}

// Decimal degrees as maps print them.
TEST(MachineLocation, ALineOfTheTableOfZonesIsAPlaceOrNothing) {
  expectPlaces(
      [](std::string_view text) { return placeOfZone(text, "Z"); },
      {{"minutes", "# code\tcoordinates\tZ\nXX\t+0000+00000\tZZ\nDE\t+5230+01322\tZ\tGermany\n", {52.5, 13.3667}},
       {"seconds, south and west", "BR\t-153359-0560605\tZ\r\n", {-15.5664, -56.1014}},
       {"the first of two", "A\t+0130-00030\tZ\nA\t+1000+01000\tZ", {1.5, -0.5}},
       {"beyond the date line", "A\t+000000-1800001\tZ"},
       {"sixty minutes", "A\t+1060+00000\tZ"},
       {"three", "A\t+5230+01322+000\tZ"},
       {"a name that only begins so", "A\t+5230+01322\tZulu\nA\t+5230+01322\t\nZ"}});
}

TEST(MachineLocation, ZonesFallBackFromTableToTableToTheZoneTheyAreAnotherNameOf) {
  const tests::TemporaryFolder folder;
  folder.write("zone1970.tab", "DE,NO\t+1000+01000\tEurope/Berlin\nUS\t+9900+00000\tAmerica/Broken\n");
  folder.write("zone.tab", "DE\t+1100+01100\tEurope/Berlin\nNO\t+2000+02000\tEurope/Oslo\n");
  folder.write("tzdata.zi",
               "# version\nZ Europe/Berlin 0 - X\nL Europe/Berlin Europe/Oslo\nL Europe/Berlin Old\nL Etc/UTC UTC\n");
  LocationSources sources(folder.path() + "/none", folder.path());
  EXPECT_EQ(sources.location("Europe/Berlin"), (Location{10, 10})) << "zone1970.tab first";
  EXPECT_EQ(sources.location("Europe/Oslo"), (Location{20, 20})) << "its own place, not Berlin's";
  EXPECT_EQ(sources.location("posix/Europe/Oslo"), (Location{20, 20}));
  for (const char* placeless : {"UTC", "", "America/Broken", "localtime"}) {
    EXPECT_EQ(sources.location(placeless), Location{}) << placeless;
  }
  EXPECT_EQ(sources.location("Old"), (Location{10, 10}));
  std::filesystem::remove(folder.path() + "/zone1970.tab");
  EXPECT_EQ(sources.location("Old"), (Location{10, 10})) << "read once";
  EXPECT_EQ(sources.location("Europe/Berlin"), (Location{11, 11}));
}

TEST(MachineLocation, AChangedGeolocationFileIsNoticedAndABrokenOneCountsAsNotThere) {
  const tests::TemporaryFolder folder;
  folder.write("zone.tab", "DE\t+1000+01000\tZ\n");
  LocationSources sources(folder.path() + "/geolocation", folder.path());
  EXPECT_EQ(sources.location("Z"), (Location{10, 10}));
  const std::string file = folder.write("geolocation", "1\n2\n0\n0\n");
  EXPECT_EQ(sources.location("Z"), (Location{1, 2}));
  folder.write("geolocation", "3\n4\n0\n0\n");
  EXPECT_EQ(sources.location("Z"), (Location{3, 4})) << "of the same length and time";
  folder.write("geolocation", "91\n4\n0\n0\n");
  EXPECT_EQ(sources.location("Z"), (Location{10, 10}));
  std::filesystem::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(sources.location("Z"), (Location{10, 10})) << "a pipe that nobody writes";
}

TEST(MachineLocation, WhatTheProgramSaysStandsBeforeTheSystemUnlessItIsNoPlace) {
  const Location sydney{-33.8675, 151.207};
  ASSERT_TRUE(setMachineLocation(sydney));
  for (const Location& nowhere : {Location{90.5, 0}, Location{0, -180.5}, Location{NAN, 0}, Location{0, NAN}}) {
    EXPECT_FALSE(setMachineLocation(nowhere));
  }
  Location guessed;
  Utilities::guessBestLatitudeAndLogitude(&guessed.latitude, nullptr);
  Utilities::guessBestLatitudeAndLogitude(nullptr, &guessed.longitude);
  EXPECT_EQ(guessed, sydney);
  ASSERT_TRUE(setMachineLocation(std::nullopt));
  EXPECT_NE(machineLocation(), sydney);
}

}  // namespace
}  // namespace SharedClasses::platform
