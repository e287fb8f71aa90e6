// Ends in the middle of a discovery, of which it is called back:
//
//   leaver early   before the event comes
//   leaver late    while its callback runs
#include <atomic>
#include <chrono>
#include <string_view>
#include <thread>

#include "kvrapi/kvrapi.h"

std::atomic<bool> g_calledBack = false;

int main(int, char **argv) {
  const auto wait = [] { std::this_thread::sleep_for(std::chrono::milliseconds(100)); };
  KVR_Initialize();
  KVR_DiscoverServers(
      [](std::uintptr_t) {
        g_calledBack = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
      },
      0);
  while (argv[1] == std::string_view("late") && !g_calledBack) wait();
  return 7;
}
