// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/worker.h>
#include <qdxsystem/unnamed_file.h>

#include <cerrno>
#include <csignal>
#include <map>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace NVORNQDX20::NPluginHost {
namespace {

TEST(Message, IsTakenFromNothingElse) {
  TMessage message;
  message.fKind = 7;
  message.fNumber = -1;
  message.fTexts = {"", std::string("a\0b", 3), std::string(kMaxMessageText + 9, 'x')};
  const std::string packet = EncodeMessage(message);
  const auto decoded = DecodeMessage(packet);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->fNumber, -1);
  EXPECT_EQ(decoded->Text(1), message.fTexts[1]);
  EXPECT_EQ(decoded->Text(2).size(), kMaxMessageText);
  EXPECT_EQ(decoded->Text(3), "");
  const std::size_t header = 9;
  for (std::size_t size = 0; size < packet.size(); ++size) {
    const bool isWhole = size == header || size == header + 4 || size == header + 4 + 4 + 3;
    EXPECT_EQ(DecodeMessage(packet.substr(0, size)).has_value(), isWhole) << size;
  }
  message.fTexts.assign(kMaxMessageTexts + 1, "x");
  EXPECT_FALSE(DecodeMessage(EncodeMessage(message)));
  EXPECT_FALSE(DecodeMessage(packet.substr(0, header) + "\xff\xff\xff\xff" + "x"));
}

struct TCase {
  std::string fName;
  std::function<void(TSender&)> fWork;
  std::string fReason;  ///< Its beginning; empty if the end is normal.
};

void Send(const TSender& sender, std::int64_t number, TDescriptor file = {}) {
  TMessage message;
  message.fNumber = number;
  message.fFile = std::move(file);
  sender.Send(message);
}

TEST(Workers, EndInTheirOwnWays) {
  const TDescriptor kept = OpenUnnamedFile();
  const TDescriptor closed = OpenUnnamedFile();
  const auto isOpen = [](int file) { return ::fcntl(file, F_GETFD) >= 0; };
  ::signal(SIGPIPE, SIG_IGN);
  const std::vector<TCase> cases = {
      {"inherits nothing odd",
       [&](TSender& sender) {
         char byte = 0;
         const bool isClean = isOpen(kept.Get()) && !isOpen(closed.Get()) &&
                              ::signal(SIGPIPE, SIG_DFL) == SIG_DFL && ::read(0, &byte, 1) == 0 &&
                              ::open("/dev/tty", O_RDWR) < 0;
         Send(sender, isClean ? 1 : 0);
       },
       ""},
      {"sends to the end",
       [](TSender& sender) {
         for (int i = 0; i < 1000; ++i) Send(sender, 1);
       },
       ""},
      {"status", [](TSender&) { ::_exit(3); }, "it ended with status 3 after "},
      {"flood",
       [](TSender& sender) {
         for (;;) Send(sender, 0);
       },
       "it sends messages without end"},
      {"delivers too much",
       [](TSender& sender) {
         for (;;) {
           TDescriptor file = OpenUnnamedFile();
           if (::ftruncate(file.Get(), 1 << 19) == 0) Send(sender, 0, std::move(file));
         }
       },
       "it delivers more than 1 MiB"},
      {"writes too much",
       [](TSender&) {
         if (::ftruncate(OpenUnnamedFile().Get(), 1 << 21) != 0) ::_exit(9);
       },
       "it wrote a file larger than its limit, 1024 KiB after "},
      {"says why",
       [](TSender&) {
         (void)!::write(1, "first\n", 6);
         (void)!::write(2, "last\n", 5);
         ::_exit(4);
       },
       "it ended with status 4 after "},
  };
  std::map<std::string, std::int64_t> sums;
  std::map<std::string, TWorkerEnd> ends;
  std::vector<TWorkerJob> jobs;
  for (const TCase& each : cases) {
    const std::string& name = each.fName;
    jobs.push_back({name,
                    each.fWork,
                    [&](TMessage&& message) { sums[name] += message.fNumber; },
                    [&](const TWorkerEnd& end) { ends[name] = end; },
                    nullptr,
                    {kept.Get()}});
  }
  TWorkerLimits limits;
  limits.fTime = std::chrono::seconds(60);
  limits.fDelivery = 1 << 20;
  limits.fMemory = 0;
  RunWorkers(jobs, limits, nullptr);
  for (const TCase& each : cases) {
    const TWorkerEnd& end = ends[each.fName];
    EXPECT_EQ(end.fIsNormal, each.fReason.empty()) << each.fName << ": " << end.fReason;
    EXPECT_EQ(end.fReason.compare(0, each.fReason.size(), each.fReason), 0) << end.fReason;
  }
  EXPECT_EQ(sums["inherits nothing odd"], 1);
  EXPECT_EQ(sums["sends to the end"], 1000);
  EXPECT_NE(ends["says why"].fReason.find(": first last"), std::string::npos);
}

TEST(Workers, MayDeliverTheirShares) {
  std::vector<TWorkerJob> jobs;
  std::string reasons;
  int normal = 0;
  for (const int kilobytes : {700, 700, 300}) {
    jobs.push_back({"worker",
                    [kilobytes](TSender& sender) {
                      TDescriptor file = OpenUnnamedFile();
                      if (kilobytes == 300) ::usleep(300'000);  // the last one
                      if (::ftruncate(file.Get(), kilobytes << 10) != 0) ::_exit(9);
                      Send(sender, 1, std::move(file));
                    },
                    [](TMessage&&) {},
                    [&](const TWorkerEnd& end) {
                      normal += end.fIsNormal ? 1 : 0;
                      reasons += end.fReason;
                    }});
  }
  TWorkerLimits limits;
  limits.fDelivery = 1 << 20;
  limits.fMemory = 0;
  RunWorkers(jobs, limits, nullptr);
  EXPECT_EQ(normal, 2) << reasons;
  EXPECT_EQ(
      reasons.find("all plug-ins deliver more than 1 MiB, and it more than its share, 341 KiB"), 0U)
      << reasons;
}

TEST(Workers, HaveTimeAsLongAsTheyGetOn) {
  std::string progress;
  TWorkerEnd patient, idle;
  const auto work = [](TSender& sender) {
    for (int i = 0; i < 8; ++i) {
      ::usleep(200'000);
      Send(sender, 1);
    }
  };
  TWorkerLimits limits;
  limits.fTime = std::chrono::seconds(1);
  RunWorkers({{"patient", work, [&](TMessage&&) { progress += "x"; },
               [&](const TWorkerEnd& end) { patient = end; }, [&] { return progress; }},
              {"idle", work, [](TMessage&&) {}, [&](const TWorkerEnd& end) { idle = end; },
               [] { return std::string(); }}},
             limits, nullptr);
  EXPECT_TRUE(patient.fIsNormal) << patient.fReason;
  EXPECT_EQ(idle.fReason.find("it made no progress for 1 s"), 0U) << idle.fReason;
}

}  // namespace
}  // namespace NVORNQDX20::NPluginHost
