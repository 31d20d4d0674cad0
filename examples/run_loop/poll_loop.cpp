// Plain poll drives the run loop beside a descriptor of the program's own: standard input, up to its end.
#include <poll.h>
#include <unistd.h>

#include <cstdio>

#include "platform/run_loop.h"

using namespace SharedClasses::platform;

int main() {
  RunLoop& loop = RunLoop::current();
  int ticks = 0;
  loop.addTimer(std::chrono::milliseconds(5), [&ticks](Timer&) { std::printf("tick %d\n", ++ticks); });
  pollfd sources[] = {{loop.descriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
  while (ticks < 3 || sources[1].fd >= 0) {
    if (poll(sources, 2, -1) < 0) {
      continue;  // a signal
    }
    if (sources[0].revents != 0) {
      loop.runOnce(std::chrono::seconds(0));
    }
    char bytes[256];
    if (sources[1].revents != 0 && read(STDIN_FILENO, bytes, sizeof bytes) <= 0) {
      sources[1].fd = -1;  // poll passes over it
    }
  }
}
