// Runs the guest programs of tests/guest/signals case by case and checks what the system side
// received: the bytes on stdout and stderr, the exit status and, for abort, the request order.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "../guest_run.h"

namespace {

using kvtest_host::GuestRun;
GuestRun run(const std::string &program, const std::string &args) {
  return kvtest_host::run_guest(program, args);
}

const std::string kFpe = "\nSIGFPE: Arithmetic exception: ";
const std::string kMem = "\nSIGRTMEM: Out of heap memory";

struct Case {
  const char *args;
  std::string out, err;
  int status;
};

// Default handling reports with the argument 1 and ends with status 1; killed by signal 6 is
// kvrun's 128 + 6.
const Case kCases[] = {
    {"handler 2", "", kFpe + "\n", 1},
    {"handler 9", "", kMem + ": Heap memory corrupted\n", 1},
    {"handler 1", "", "", 1},
    {"handler 8", "", "", 1},
    {"handler e", "", "", 1},
    {"handler 0", "", "", 1},
    {"handler -5", "", "", 1},
    {"fpe 8000000", "", kFpe + "Divide By Zero\n", 1},
    {"fpe c000000", "", kFpe + "Invalid Operation\n", 1},
    {"fpe 10000000", "", kFpe + "Overflow\n", 1},
    {"fpe 60000000", "", kFpe + "Underflow\n", 1},
    {"fpe 40000000", "", kFpe + "Inexact Result\n", 1},
    {"fpe 0", "", kFpe + "\n", 1},
    {"fpe 2", "returned\n", "", 0},
    {"rtmem 1", "", kMem + ": Heap memory corrupted\n", 1},
    {"rtmem 0", "", kMem + "\n", 1},
    {"raise 2 8000000", "", kFpe + "\n", 1}, // the default path reports with 1, not the type
    {"raise d 0", "", "", 1},
    {"sig_exit 0", "returned\n", "", 0},
    {"sig_exit 7", "", "", 7},
    {"fp_trap 88000003", "", kFpe + "Divide By Zero\n", 1}, // masked to bits 21, 26..30
    {"fp_trap 80200003", "", kFpe + "\n", 1},
    {"assert c", "", "*** assertion failed: x > 0, file f, line 12\n", 134},
    {"assert 0", "", "*** assertion failed: x > 0, file f, line \n", 134},
    {"assert -7", "", "*** assertion failed: x > 0, file f, line \n", 134},
    {"assert 7fffffff", "", "*** assertion failed: x > 0, file f, line 2147483647\n", 134},
    {"sigrtred", "", "*** assertion failed: 0, file kv_signal, line 174\n", 134},
    // atexit functions run newest first at unload; one registered meanwhile runs next.
    {"atexit", "CBDA", "", 0},
    {"atexit_exit", "CBDA", "", 3},
    // abort flushes every stream before the signal ends the process.
    {"abort", "pending", "", 134},
};

void expect_runs(const char *program, const Case *cases, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const Case &c = cases[i];
    SCOPED_TRACE(c.args);
    GuestRun r = run(program, c.args);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(r.status, c.status);
  }
}

TEST(SignalExits, ReportsAndStatuses) {
  expect_runs(EXITS_PROGRAM, kCases, sizeof kCases / sizeof kCases[0]);
}

// With a system side that lets signal 6 return: flush, signal, reset of signal 6, the shutdown
// (the atexit record runs, the streams close), signal again, exit -1.
TEST(SignalExits, AbortOrderWhenSignalsReturn) {
  GuestRun r = run(EXITS_PROGRAM, "abort_returning");
  EXPECT_EQ(r.out, "pendingkill 6\ndestructor\nkill 6\n");
  EXPECT_EQ(r.status, 255);
  std::vector<std::string> names;
  for (const std::string &line : r.trace) {
    std::istringstream in(line);
    std::string trap, number, name, w1;
    in >> trap >> number >> name >> w1;
    if (name == "write")
      names.push_back("write");
    else if (name == "unsupported")
      names.push_back("unsupported " + w1);
    else if (name == "exit")
      names.push_back(name + " " + w1);
    else if (line.find("_sys_close(") != std::string::npos)
      names.push_back("stream closed");
  }
  std::vector<std::string> tail;
  size_t first_write = 0;
  while (first_write < names.size() && names[first_write] != "write")
    ++first_write;
  tail.assign(names.begin() + static_cast<long>(first_write), names.end());
  // pending, kill 6, sigaction(6) refused, destructor, the three standard streams closed, kill
  // 6, exit(-1).
  std::vector<std::string> expect = {"write",         "write",         "unsupported 00000006",
                                     "write",         "stream closed", "stream closed",
                                     "stream closed", "write",         "exit ffffffff"};
  EXPECT_EQ(tail, expect);
}

TEST(SignalVectors, TheProgramsLookupDecides) {
  const Case cases[] = {
      {"default", "", kFpe + "\n", 1},
      {"ignore", "asked (-1, 2)\nreturned\n", "", 0},
      {"handler", "handler got 2 and the type\nasked (-1, 2)\nreturned\n", "", 0},
  };
  expect_runs(VECTORS_PROGRAM, cases, sizeof cases / sizeof cases[0]);
}

} // namespace
