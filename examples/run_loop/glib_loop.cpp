// GLib's loop drives the run loop; while the library waits, the run loop lets GLib's go on.
#include <glib-unix.h>

#include <cstdio>

#include "platform/run_loop.h"

using namespace SharedClasses::platform;

static gboolean serve(gint, GIOCondition, gpointer loop) {
  static_cast<RunLoop*>(loop)->runOnce(std::chrono::seconds(0));
  return G_SOURCE_CONTINUE;
}

static gboolean passOver(gpointer) {
  return G_SOURCE_CONTINUE;
}

// Ends when anything was served, the run loop's descriptor included, or after `longest`, which is a day at most.
static void runGLibOnce(std::chrono::nanoseconds longest) {
  const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(longest).count();
  const guint end = g_timeout_add(static_cast<guint>(milliseconds), passOver, nullptr);
  g_main_context_iteration(nullptr, TRUE);
  g_source_remove(end);
}

int main() {
  RunLoop& loop = RunLoop::current();
  GSource* source = g_unix_fd_source_new(loop.descriptor(), G_IO_IN);
  g_source_set_callback(source, G_SOURCE_FUNC(serve), &loop, nullptr);
  g_source_set_can_recurse(source, TRUE);  // a callback may wait: the loop then goes on inside of it
  g_source_attach(source, nullptr);
  loop.setPump(runGLibOnce);

  int ticks = 0;
  loop.addTimer(std::chrono::milliseconds(5), [&ticks](Timer&) { std::printf("tick %d\n", ++ticks); });
  loop.runOnce(std::chrono::hours(1));  // a wait of the library
  while (ticks < 3) {
    g_main_context_iteration(nullptr, TRUE);  // what GTK's loop does
  }

  loop.setPump(nullptr);
  g_source_destroy(source);
  g_source_unref(source);
}
