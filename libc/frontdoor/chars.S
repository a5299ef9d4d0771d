@ fputc and fgetc (and putc, getc, putchar, getchar) for programs. While both lock hooks are
@ still bound to the library's do-nothing body, taking the lock would do nothing, so a character
@ that the buffer can take or give is stored or read here without a call or a frame. The hooks
@ are read from the GOT on every call, so a replacement bound at any time is used. Everything
@ else (a bound hook, an empty or full buffer) goes to the locked paths in stdio.cpp.
@
@ ARM state: there a GOT entry is two instructions, a literal and a PC-relative load.
#include "support/asm_entry.h"

	.syntax unified
	.arm
	.text

@ Leaves Z set when __mutex_acquire and __mutex_release are both __mutex_default. \a and \b
@ are scratch registers; \p names the literals.
	.macro hooks_idle a, b, p
	ldr	\a, .L\p\()_acquire
	ldr	\b, .L\p\()_default
.L\p\()_pc_acquire:
	ldr	\a, [pc, \a]
.L\p\()_pc_default:
	ldr	\b, [pc, \b]
	cmp	\a, \b
	ldreq	\a, .L\p\()_release
.L\p\()_pc_release:
	ldreq	\a, [pc, \a]
	cmpeq	\a, \b
	.endm

@ The literals: each GOT entry's offset from the PC as the load above sees it (8 ahead).
	.macro hook_literals p
.L\p\()_acquire:
	.word	__mutex_acquire(GOT_PREL) + (.L\p\()_acquire - .L\p\()_pc_acquire - 8)
.L\p\()_default:
	.word	__mutex_default(GOT_PREL) + (.L\p\()_default - .L\p\()_pc_default - 8)
.L\p\()_release:
	.word	__mutex_release(GOT_PREL) + (.L\p\()_release - .L\p\()_pc_release - 8)
	.endm

@ int putchar(int ch): fputc on stdout, falling into it.
	.p2align 2
	arm_entry putchar
	ldr	r1, .Lstdout
.Lpc_stdout:
	ldr	r1, [pc, r1]			@ &stdout
	ldr	r1, [r1]

@ int fputc(int ch, FILE *s)
	arm_entry fputc
	arm_entry putc
	hooks_idle r2, r3, put
	ldrd	r2, r3, [r1, #4]		@ cursor, write_count
	movne	r3, #0				@ a bound hook: as if the buffer were full
	subs	r3, r3, #1
	bmi	kv_fputc_locked
	strb	r0, [r2], #1
	strd	r2, r3, [r1, #4]
	and	r0, r0, #255
	bx	lr
	hook_literals put
.Lstdout:
	.word	stdout(GOT_PREL) + (.Lstdout - .Lpc_stdout - 8)
	.size	putchar, . - putchar
	.size	fputc, . - fputc
	.size	putc, . - putc

@ int getchar(void): fgetc on stdin, falling into it.
	.p2align 2
	arm_entry getchar
	ldr	r0, .Lstdin
.Lpc_stdin:
	ldr	r0, [pc, r0]			@ &stdin
	ldr	r0, [r0]

@ int fgetc(FILE *s)
	arm_entry fgetc
	arm_entry getc
	hooks_idle r1, r2, get
	ldrd	r2, r3, [r0]			@ read_count, cursor
	movne	r2, #0				@ a bound hook: as if the buffer were empty
	subs	r2, r2, #1
	bmi	kv_fgetc_locked
	ldrb	r1, [r3], #1
	strd	r2, r3, [r0]
	mov	r0, r1
	bx	lr
	hook_literals get
.Lstdin:
	.word	stdin(GOT_PREL) + (.Lstdin - .Lpc_stdin - 8)
	.size	getchar, . - getchar
	.size	fgetc, . - fgetc
	.size	getc, . - getc

	.section .note.GNU-stack, "", %progbits
