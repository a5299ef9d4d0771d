@ int32_t raw_trap(int32_t number, uint32_t w1, uint32_t w2, uint32_t w3)
@ A request with any call number, w4..w7 zero: for numbers no entry point issues.
	.syntax unified
	.arm
	.text
	.p2align 2
	.global raw_trap
	.type raw_trap, %function
raw_trap:
	push	{r4-r7}
	mov	r4, #0
	mov	r5, #0
	mov	r6, #0
	mov	r7, #0
	.inst	0xe7f006f4
	pop	{r4-r7}
	bx	lr
	.size raw_trap, . - raw_trap
	.section .note.GNU-stack,"",%progbits
