// Prints the user and the number of the user whom a program serves that was started with these arguments.
#include <iostream>

#include "system/processes/process_detection.h"

int main() {
  std::cout << SharedClasses::Utilities::marlowUser() << ' ' << SharedClasses::Utilities::marlowUserID() << '\n';
}
