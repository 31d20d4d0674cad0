#include "system/miscellany/desktop.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <stdexcept>

#include "platform/voices.h"
#include "tests/support/captured_log.h"
#include "tests/support/temporary_folder.h"

namespace SharedClasses::Utilities {

using Voices = std::vector<platform::Voice>;

// A folder that is PATH and the user's data folder.
class Desktop : public testing::Test {
 protected:
  Desktop() { ::setenv("PATH", mFolder.path().c_str(), 1), ::setenv("XDG_DATA_HOME", mFolder.path().c_str(), 1); }
  ~Desktop() override {
    ::setenv("PATH", mPath.c_str(), 1), ::unsetenv("XDG_DATA_HOME"), platform::setVoiceProvider({});
  }

  tests::TemporaryFolder mFolder;
  std::string mPath = ::getenv("PATH");
};

TEST_F(Desktop, ProgramsAreFoundAndPagesOpenedWithWhatTheUserHas) {
  const std::string program = mFolder.writeProgram("zq");
  mFolder.write("applications/z.desktop", "[Desktop Entry]\nType=Application\nName=The Editor\nExec=zq %F");
  EXPECT_EQ(findAppWithShortName("The Editor"), program);
  EXPECT_EQ(findAppWithShortName("zq-none"), std::nullopt);
  EXPECT_TRUE(openURL("https://example.com")) << "without an opener";
  mFolder.writeProgram("xdg-open");
  EXPECT_FALSE(openURL("https://example.com"));
  EXPECT_TRUE(openURL("example.com"));
}

// The form is that of spd-say 0.11.4 and 0.12.0, with rows of its own.
TEST_F(Desktop, WithoutAProviderTheVoicesAreThoseThatTheSpeechDispatcherLists) {
  EXPECT_EQ(voiceIDWithName("Zulu"), std::nullopt) << "without the program";
  const std::string kPrint = "[ \"$*\" = -L ] && printf '%25s%25s%25s\\n' ";
  const std::string kHeading = kPrint + "NAME LANGUAGE VARIANT ";
  const std::string kLong = "Afrikaans+Half-LifeAnnouncementSystem";
  const std::string kMore = "; printf '%1100000s\\n'; ";  // than a mebibyte
  const std::string kList = kHeading + "'' '' '' 'English (America)' en-us none " + kLong +
                            " af Half-LifeAnnouncementSystem" + kMore + kPrint + "Zul\xC3\xBA zu 'Mr serious'";
  mFolder.writeProgram("spd-say", kList);
  for (const std::string& voice : {std::string("English (America)"), kLong, std::string("Zul\xC3\xBA")}) {
    EXPECT_EQ(voiceIDWithName(voice), voice);
  }
  for (const char* voice : {"English", "english (america)", "NAME", "Mr serious", ""}) {
    EXPECT_EQ(voiceIDWithName(voice), std::nullopt) << voice;
  }
  const std::string kCut = kHeading + "; printf '%25s%25s%25s' Zulu zu none";
  for (const std::string& script : {kPrint + "Zulu zu none", kCut}) {
    mFolder.writeProgram("spd-say", script);
    EXPECT_EQ(voiceIDWithName("Zulu"), std::nullopt) << script;
  }
}

TEST_F(Desktop, AVoiceOfTheProviderIsTheFirstWhoseNameIsTheSame) {
  platform::setVoiceProvider([] {
    platform::setVoiceProvider([]() -> Voices { throw std::runtime_error("no voices"); });
    return Voices{{"x", {}}, {"y", {{"VoiceName", 7}}}, {"z", {{"VoiceName", "anna"}}}, {"a", {{"VoiceName", "Anna"}}}};
  });
  EXPECT_EQ(voiceIDWithName("Anna"), "a");
  const tests::CapturedLog log;
  EXPECT_EQ(voiceIDWithName("Anna"), std::nullopt);
  platform::setVoiceProvider([] {
    return Voices{{voiceIDWithName("Anna").value_or("none"), {{"VoiceName", "Anna"}}}};
  });
  EXPECT_EQ(voiceIDWithName("Anna"), "none") << "where it asks itself";
  EXPECT_EQ(voiceIDWithName("Anna"), "none") << "logged once";
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"The provider of the voices threw std::runtime_error.",
                                                      "The provider of the voices was asked again while it ran."}));
}

}  // namespace SharedClasses::Utilities
