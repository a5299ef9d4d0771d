@ void hook_got_entries(void ***acquire, void ***release): where the program's GOT holds its
@ bindings of __mutex_acquire and __mutex_release.
	.syntax unified
	.thumb
	.text

	.global hook_got_entries
	.type hook_got_entries, %function
	.thumb_func
hook_got_entries:
	ldr	r2, .Lacquire
.Lpc_acquire:
	add	r2, pc
	str	r2, [r0]
	ldr	r2, .Lrelease
.Lpc_release:
	add	r2, pc
	str	r2, [r1]
	bx	lr
	.p2align 2
.Lacquire:
	.word	__mutex_acquire(GOT_PREL) + (.Lacquire - .Lpc_acquire - 4)
.Lrelease:
	.word	__mutex_release(GOT_PREL) + (.Lrelease - .Lpc_release - 4)
	.size	hook_got_entries, . - hook_got_entries

	.section .note.GNU-stack, "", %progbits
