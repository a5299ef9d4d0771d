@ The one way to the system side. ARM state, because the system side recognises the trap as the
@ ARM-state word of `udf #100`. Called as
@   int32_t __kv_trap(int32_t number, uint32_t w1, w2, w3, w4, w5, w6, w7)
@ so that, under the procedure-call standard, the number and w1..w3 arrive in r0..r3 and w4..w7
@ are the four words at the top of the caller's stack. The system side answers in r0.
	.syntax unified
	.arm
	.text
	.p2align 2
	.global __kv_trap
	.hidden __kv_trap
	.type __kv_trap, %function
__kv_trap:
	push	{r4-r7}
	add	r12, sp, #16		@ the caller's stack pointer at the call
	ldm	r12, {r4-r7}
	.inst	0xe7f006f4		@ udf #100
	pop	{r4-r7}
	bx	lr
	.size __kv_trap, . - __kv_trap

	.section .note.GNU-stack,"",%progbits
