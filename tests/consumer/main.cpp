// Uses installed headers, library and resources the way a program outside this project does.
#include <cstdio>

#include "platform/bundle.h"
#include "platform/library_version.h"
#include "protocols/insteon/insteon_addresses.h"
#include "wording/action_phrases.h"

int main() {
  using namespace SharedClasses;
  const platform::Value devices[] = {"hall lamp", "porch lights"};
  const std::string sentence =
      Utilities::logStringForDevices({.devices = devices, .actionCode = fourCharCode("Dim "), .amount = 40});
  const platform::Value version = platform::Bundle::main().infoValue("CFBundleVersion");
  const bool good = sentence == "The hall lamp and porch lights were dimmed by 40%." &&
                    Utilities::intWithINSTEONAddress("1a2b3c") == 0x1A2B3C &&
                    version == platform::Value(platform::libraryVersion());
  std::printf("%s\n", sentence.c_str());
  return good ? 0 : 1;
}
