#!/usr/bin/env bash
# What libc.so exports, as a loader sees its dynamic symbol table: every entry point with its
# binding, the errno accessors, and none of the ISO C names.
set -u
lib=$1
readelf=$(command -v llvm-readelf || command -v readelf)
syms=$("$readelf" --dyn-syms -W "$lib" | awk '$7 != "UND" && NF >= 8 {print $8, $5, $4}')
fail=0
expect() { # name binding type
  local got
  got=$(awk -v n="$1" '$1 == n {print $2, $3}' <<<"$syms")
  if [ "$got" != "$2 $3" ]; then
    echo "FAIL: $1 should be exported $2 $3, found '${got:-nothing}'"
    fail=1
  fi
}
absent() {
  if awk -v n="$1" '$1 == n {found=1} END {exit !found}' <<<"$syms"; then
    echo "FAIL: $1 must not be exported"
    fail=1
  fi
}

weak_entry_points="open mmap munmap puts socket bind connect listen accept sendto recvfrom write
  read close exit lseek mkdir rmdir opendir readdir closedir remove select sleep time getsockname
  set_errno_addr send recv gethostbyname rename stat getpid unlink access fstat fsync ftruncate
  getcwd set_h_errno_addr fcntl chdir fchdir getpeername getsockopt setsockopt gethostbyaddr sha
  sysconf syslog copy_environ os_current_time_in_ms shm_open shm_unlink posix_spawn truncate
  times adjtime clock_settime sendmsg recvmsg getnameinfo getaddrinfo ioctl alarm pselect
  sigprocmask pthread_sigmask pipe shutdown fchmod getuid statvfs fstatvfs chmod clock
  get_errno_addr get_h_errno_addr free realloc calloc posix_memalign"
for e in $weak_entry_points; do expect "__syscall_$e" WEAK FUNC; done
expect __syscall_kill GLOBAL FUNC
expect __syscall_sigaction GLOBAL FUNC
for f in ___aeabi_errno_addr ___h_errno_addr __read_errno __set_errno __rt_fp_status_addr \
         __rt_ddtor_pointer_addr __rt_eh_globals_addr __C_library_version_number; do
  expect "$f" GLOBAL FUNC
done
for f in __mutex_initialize __mutex_acquire __mutex_release __mutex_destroy; do
  expect "$f" WEAK FUNC
done
# Their shared default body under a name of its own, which programs compare the hooks with.
expect __mutex_default GLOBAL FUNC
for f in abort mallopt malloc_trim isatty _exit __rt_SIGRTRED __ARM_exceptions_buffer_init \
         __ARM_exceptions_buffer_allocate __ARM_exceptions_buffer_free _sys_open _sys_close \
         _sys_read _sys_write _sys_flen _sys_seek _sys_istty _sys_exit _ttywrch __filbuf \
         __filbuf_byte __flsbuf __flsbuf_wide _writebuf _readbuf _fflush _do_fflush \
         _flushlinebuffered _deferredlazyseek _fseek _ftell_internal _ungetc_internal \
         _fclose_internal _seterr _seteof __backspace _printf_char_file freopen setvbuf; do
  expect "$f" GLOBAL FUNC
done
for f in sigemptyset sigfillset sigaddset sigdelset sigismember sigaction signal kill raise \
         sigprocmask pthread_sigmask alarm pause random srandom atexit _call_atexit_fns __rt_raise \
         __raise __default_signal_handler __default_signal_display __rt_SIGFPE __rt_SIGFPE_inner \
         __rt_SIGRTMEM_inner __rt_SIGABRT_inner __rt_SIGCPPL_inner __rt_SIGILL_inner \
         __rt_SIGINT_inner __rt_SIGPVFN_inner __rt_SIGRTRED_inner __rt_SIGSEGV_inner \
         __rt_SIGSTAK_inner __rt_SIGTERM_inner __rt_SIGUSR1_inner __rt_SIGUSR2_inner \
         __rt_sigother_inner __sig_exit _fp_trap _fp_trap_shutdown __aeabi_assert; do
  expect "$f" GLOBAL FUNC
done
expect _random_number_data GLOBAL OBJECT
# The core asks the platform for handlers; it never answers itself.
absent __sigvec_lookup
for v in stdin stdout stderr __aeabi_stdin __aeabi_stdout __aeabi_stderr _stream_list_lock; do
  expect "$v" GLOBAL OBJECT
done
for f in __user_libspace __user_perproc_libspace __user_perthread_libspace; do
  expect "$f" WEAK FUNC
done
expect __libspace_start GLOBAL OBJECT
expect environ GLOBAL OBJECT
expect __ctype GLOBAL OBJECT
expect __lcnull_start GLOBAL OBJECT
for f in __rt_ctype_table _setlocale_r _get_lconv nl_langinfo; do expect "$f" GLOBAL FUNC; done
for f in printf fprintf sprintf malloc free calloc realloc strlen strcmp strcpy memcpy memset \
         memmove memcmp fopen fclose puts putchar exit __kv_trap debug_log setlocale localeconv \
         isalpha isdigit isspace toupper tolower fgetc fputc fputs fflush fseek \
         ftell ungetc clearerr feof ferror; do
  absent "$f"
done
# Nothing undefined but the optional weak hooks.
undefined=$("$readelf" --dyn-syms -W "$lib" | awk '$7 == "UND" && $8 != "" && $5 != "WEAK" {print $8}')
if [ -n "$undefined" ]; then
  echo "FAIL: libc.so needs strong symbols it does not define: $undefined"
  fail=1
fi
# The library's own calls to the replaceable hooks go through the GOT.
relocs=$("$readelf" -r -W "$lib")
for hook in __syscall_syslog __syscall_set_errno_addr __syscall_get_errno_addr ___aeabi_errno_addr \
            ___h_errno_addr __syscall_copy_environ __syscall_free __syscall_mmap __syscall_munmap \
            __mutex_acquire __mutex_release __mutex_initialize; do
  grep -q "R_ARM_JUMP_SLOT.* $hook\$" <<<"$relocs" || { echo "FAIL: $hook is not called through the GOT"; fail=1; }
done
needed=$("$readelf" -d "$lib" | grep NEEDED)
grep -q '\[libdl.so\]' <<<"$needed" || { echo "FAIL: libc.so must need libdl.so"; fail=1; }
soname=$("$readelf" -d "$lib" | grep SONAME)
grep -q '\[libc.so\]' <<<"$soname" || { echo "FAIL: soname must be libc.so"; fail=1; }
[ $fail -eq 0 ] && echo "exports ok"
exit $fail
