// SPDX-License-Identifier: Apache-2.0
/// What a plug-in does wrong, as its file's name says: libWHERE_WHAT.nsp.so.
#ifndef TESTS_QDX_MISBEHAVING_H_
#define TESTS_QDX_MISBEHAVING_H_

#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

/// "open_hang" for libopen_hang.nsp.so.
inline std::string ServiceOf(void* symbol) {
  Dl_info info{};
  ::dladdr(symbol, &info);
  const std::string file = std::filesystem::path(info.dli_fname).filename();
  return file.substr(3, file.find('.') - 3);
}

inline std::uint64_t Overflow(std::uint64_t depth) {
  volatile unsigned char frame[4096] = {};
  frame[depth % sizeof frame] = 1;
  return depth == ~std::uint64_t{0} ? 0 : Overflow(depth + 1) + frame[0];
}

inline void Sleep() {
  for (;;) ::pause();
}

/// A process that outlives its parent, and the worker if nobody looks for it. Named like the
/// plug-in, so that tests that run side by side tell theirs.
inline void LeaveOrphan(bool ownSession) {
  if (::fork() != 0) return;
  if (ownSession) ::setsid();
  if (::fork() != 0) ::_exit(0);
  Dl_info plugin{};
  ::dladdr(reinterpret_cast<const void*>(&LeaveOrphan), &plugin);
  ::execl("/bin/sleep", plugin.dli_fname, "4711", nullptr);
  ::_exit(1);
}

inline void FreeTwice() {
  void* volatile memory = ::operator new(24);
  ::operator delete(memory);
  ::operator delete(memory);  // NOLINT(clang-analyzer-cplusplus.NewDelete): that is the mistake
}

/// The only socket: that through which the worker delivers.
inline int WorkerSocket() {
  int socket = 3;
  const auto isPacketSocket = [&socket] {
    int type = 0;
    socklen_t size = sizeof type;
    return ::getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
  };
  while (!isPacketSocket()) ++socket;
  return socket;
}

inline void Misbehave(const std::string& what) {
  if (what == "hang") Sleep();
  if (what == "busy") {
    for (volatile int i = 0;; i = i + 1) {
    }
  }
  if (what == "segv") std::raise(SIGSEGV);
  if (what == "abort") std::abort();
  if (what == "exit") std::exit(0);
  if (what == "_exit") ::_exit(0);
  if (what == "quick") std::quick_exit(0);
  if (what == "foreign") throw std::runtime_error("foreign");
  if (what == "one") throw 1;
  if (what == "stack") Overflow(0);
  if (what == "alloc") {
    for (std::vector<std::string> all;;) all.emplace_back(std::size_t{1} << 27U, 'x');
  }
  if (what == "twice") FreeTwice();
  if (what == "close") ::closefrom(0);
  if (what == "print") {
    for (;;) std::cerr << "for ever and ever" << std::endl;
  }
  if (what == "orphan" || what == "setsid") LeaveOrphan(what == "setsid");
  if (what == "forks") {
    for (int i = 0; i < 100; ++i) {
      if (::fork() == 0) Sleep();
    }
    Sleep();
  }
  if (what == "block") {
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_BLOCK, &all, nullptr);
    Sleep();
  }
  if (what == "stop") std::raise(SIGSTOP);
  if (what == "noise") (void)::send(WorkerSocket(), "what is no message", 18, 0);
  if (what == "lost") {  // its supervisor
    LeaveOrphan(true);
    ::kill(::getppid(), SIGKILL);
    Sleep();
  }
  if (what == "change") {  // harms nobody in a process of its own
    std::setlocale(LC_ALL, "");
    ::umask(0777);
    if (::chdir("/") != 0) std::abort();
    std::signal(SIGTERM, SIG_IGN);
  }
}

#endif  // TESTS_QDX_MISBEHAVING_H_
