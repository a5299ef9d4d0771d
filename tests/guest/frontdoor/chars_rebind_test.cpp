// Lock hooks bound while the program runs (written into its GOT, as a host that starts
// threads late might) are called from the next character on, and a return to the library's
// own hooks is seen as well: the character calls decide per call, not once.
#include <kvtest.h>
#include <stdint.h>
#include <stdio.h>

extern "C" void hook_got_entries(void ***acquire, void ***release);

namespace {

int acquired, released;
int count_acquire(uint32_t *) { return ++acquired, 0; }
void count_release(uint32_t *) { ++released; }

TEST(CharLocks, HooksBoundLaterAreCalledPerCharacter) {
  void **acquire_entry, **release_entry;
  hook_got_entries(&acquire_entry, &release_entry);
  void *library_acquire = *acquire_entry, *library_release = *release_entry;

  FILE *out = fopen("rebind.dat", "wb");
  ASSERT_TRUE(out != nullptr);
  // Phases: the library's hooks, both replaced, only one replaced, the library's again.
  struct {
    void *acquire, *release;
    int acquires, releases;
  } const rows[] = {
      {library_acquire, library_release, 0, 0},
      {reinterpret_cast<void *>(count_acquire), reinterpret_cast<void *>(count_release), 600, 600},
      {library_acquire, reinterpret_cast<void *>(count_release), 0, 600},
      {reinterpret_cast<void *>(count_acquire), library_release, 600, 0},
      {library_acquire, library_release, 0, 0},
  };
  for (const auto &row : rows) {
    *acquire_entry = row.acquire;
    *release_entry = row.release;
    int a0 = acquired, r0 = released;
    for (int i = 0; i < 600; ++i)
      fputc('a' + i % 26, out);
    EXPECT_EQ(acquired - a0, row.acquires);
    EXPECT_EQ(released - r0, row.releases);
  }
  EXPECT_EQ(fclose(out), 0);

  FILE *in = fopen("rebind.dat", "rb");
  ASSERT_TRUE(in != nullptr);
  int wrong = 0;
  for (const auto &row : rows) {
    *acquire_entry = row.acquire;
    *release_entry = row.release;
    int a0 = acquired, r0 = released;
    for (int i = 0; i < 600; ++i)
      wrong += fgetc(in) != 'a' + i % 26;
    EXPECT_EQ(acquired - a0, row.acquires);
    EXPECT_EQ(released - r0, row.releases);
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(fgetc(in), EOF);
  *acquire_entry = library_acquire;
  *release_entry = library_release;
  EXPECT_EQ(fclose(in), 0);
  remove("rebind.dat");
}

} // namespace
