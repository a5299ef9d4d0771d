#include "cli/options.h"

namespace kvrun {

std::string usage_text() {
  return "Usage: kvrun [options] PROGRAM [ARGS...]\n"
         "Runs PROGRAM, an ARM program of the para-virtualised environment, under emulation, with\n"
         "the libraries it needs, and answers its requests with host services.\n"
         "\n"
         "Options:\n"
         "  -L, --library-path DIR    add DIR to the library search path (repeatable; searched in\n"
         "                            order, then " KV_DEFAULT_LIBDIR ")\n"
         "  -r, --root DIR            sandbox root, drive c: (default: the current directory)\n"
         "  -e, --env NAME=VALUE      environment variable for the program (repeatable); the\n"
         "                            program sees only these, nothing of kvrun's environment\n"
         "  -l, --log FILE|-          where the debug log and syslog lines go, each line after\n"
         "                            its priority as <P>, with a note for each injected\n"
         "                            failure (default: nowhere; - is standard error)\n"
         "  -t, --trace FILE|-        request trace, one line per trap (default: none):\n"
         "                              trap NUM NAME W1 W2 W3 W4 W5 W6 W7 = RESULT errno E\n"
         "                            words and result in hex; E is the errno the request failed\n"
         "                            with (library numbering), 0 if it succeeded; then the\n"
         "                            call decoded: NAME(ARGS) with paths and buffers shown\n"
         "  -c, --count               report the guest instructions executed, at exit\n"
         "  -T, --time-limit SEC      stop the program after SEC seconds of wall time\n"
         "  -m, --memory-limit BYTES  cap on the program's mmap memory (suffixes K, M, G); mmap\n"
         "                            beyond it fails with ENOMEM\n"
         "  -f, --fail N:E[:K]        make call N fail with errno E (a number or a name such as\n"
         "                            EIO), only its K-th time if K is given (repeatable)\n"
         "      --max-files N         guest descriptors are numbered below N (default 256); open\n"
         "                            beyond it fails with EMFILE\n"
         "  -h, --help                show this text\n"
         "\n"
         "Exit status:\n"
         "  the program's status & 0xFF (what main returned, or what it passed to exit)\n"
         "  124  time limit exceeded\n"
         "  125  usage or internal error of kvrun\n"
         "  126  program or library cannot be loaded\n"
         "  127  program not found\n"
         "  132  undefined instruction (or another unexpected CPU exception)\n"
         "  139  memory fault (unmapped, protected or misaligned access)\n";
}

} // namespace kvrun
