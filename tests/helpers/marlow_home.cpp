// Prints the home folder of the user whom a program serves that was started with these arguments, and that user's
// library.
#include <iostream>

#include "system/miscellany/folders.h"

int main() {
  using namespace SharedClasses::Utilities;
  std::cout << homeDirectory() << ' ' << pathToDirectoryInDomain("Library", "User") << '\n';
}
