// Never ends on its own: for the time limit.
extern "C" __attribute__((noinline)) void spin_forever() {
  for (;;)
    __asm__ volatile("");
}

int main() {
  spin_forever();
  return 0;
}
