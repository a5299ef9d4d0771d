#include "test_support.h"

#include <stdio.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "cli/main_entry.h"

namespace kvtest_host {
namespace {

std::string contents(FILE *f) {
  std::string s;
  rewind(f);
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, f)) > 0)
    s.append(buf, n);
  return s;
}

} // namespace

Captured run_kvrun(const std::vector<std::string> &args) {
  std::vector<std::string> all{"kvrun"};
  all.insert(all.end(), args.begin(), args.end());
  std::vector<char *> argv;
  for (auto &a : all)
    argv.push_back(a.data());
  argv.push_back(nullptr);
  FILE *out = tmpfile(), *err = tmpfile();
  int status = kvrun::kvrun_main(static_cast<int>(all.size()), argv.data(), fileno(out), fileno(err));
  Captured c{status, contents(out), contents(err)};
  fclose(out);
  fclose(err);
  return c;
}

std::string loader_program(const std::string &name) { return std::string(KV_LOADER_PROGRAMS) + "/" + name; }

std::vector<std::string> lines_of(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line))
    lines.push_back(line);
  return lines;
}

std::vector<uint8_t> read_file(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

void write_file(const std::string &path, const std::vector<uint8_t> &bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

TempDir::TempDir() {
  char name[] = "/tmp/kvrun-test-XXXXXX";
  path_ = mkdtemp(name);
}

TempDir::~TempDir() { std::filesystem::remove_all(path_); }

} // namespace kvtest_host
