@ __rt_switch8: dense switch dispatch for compiled code, reached with BL and the case index in
@ r0. With lr as the BL left it (Thumb bit set), the byte at lr - 1 holds the number of cases N,
@ the bytes at lr + i the halfword offset of case i, and the byte at lr + N the default's; an
@ index of N or more (unsigned) takes the default. Control goes on at lr + 2 * offset. Every
@ register except r12 and the flags is kept.
	.syntax unified
	.thumb
	.text
	.global __rt_switch8
	.protected __rt_switch8
	.type __rt_switch8, %function
	.thumb_func
	.p2align 2
__rt_switch8:
	push	{r1, r2}
	ldrb	r1, [lr, #-1]
	cmp	r0, r1
	ite	lo
	ldrblo	r2, [lr, r0]
	ldrbhs	r2, [lr, r1]
	add	r12, lr, r2, lsl #1
	pop	{r1, r2}
	bx	r12
	.size __rt_switch8, . - __rt_switch8

	.section .note.GNU-stack,"",%progbits
