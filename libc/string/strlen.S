@ size_t strlen(const char *s) -- library-internal.
@ UADD8 with 0xffffffff sets a GE bit for every non-zero byte; SEL then gathers "some byte was
@ zero" over a block. The bulk reads 32-byte blocks at 32-byte alignment, which never cross a
@ page and always hold a byte of the string, so reading past the terminator is harmless.
	.syntax unified
	.thumb
	.text
	.global strlen
	.hidden strlen
	.type strlen, %function
	.thumb_func
	.p2align 2
strlen:
	push	{r4-r9, lr}
	mov	r1, r0			@ start
	bic	r0, r0, #3
	mvn	r12, #0
	mov	r9, #0
	ldr	r2, [r0], #4
	ands	r3, r1, #3
	beq	1f
	@ Bytes before the start count as non-zero.
	lsls	r3, r3, #3
	lsl	r3, r12, r3
	orn	r2, r2, r3
1:	uadd8	r2, r2, r12
	sel	r2, r9, r12		@ 0xff where a byte was zero
	cbnz	r2, .Lfound
2:	tst	r0, #15
	beq	25f
	ldr	r2, [r0], #4
	uadd8	r2, r2, r12
	sel	r2, r9, r12
	cbnz	r2, .Lfound
	b	2b
.Lfound:
	@ r0 is 4 past the word holding the first zero byte, marked 0xff in r2.
	rbit	r2, r2
	clz	r2, r2
	add	r0, r0, r2, lsr #3
	subs	r0, r0, #4
	subs	r0, r0, r1
	pop	{r4-r9, pc}
25:	@ One 16-byte block brings the pointer to 32-byte alignment.
	tst	r0, #16
	beq	3f
	ldmia	r0!, {r2-r5}
	uadd8	r2, r2, r12
	sel	r2, r9, r12
	uadd8	r3, r3, r12
	sel	r2, r2, r12
	uadd8	r4, r4, r12
	sel	r2, r2, r12
	uadd8	r5, r5, r12
	sel	r2, r2, r12
	cmp	r2, #0
	beq	3f
	subs	r0, r0, #16
	b	4f
3:	ldmia	r0!, {r2-r8, lr}
	uadd8	r2, r2, r12
	sel	r2, r9, r12
	uadd8	r3, r3, r12
	sel	r2, r2, r12
	uadd8	r4, r4, r12
	sel	r2, r2, r12
	uadd8	r5, r5, r12
	sel	r2, r2, r12
	uadd8	r6, r6, r12
	sel	r2, r2, r12
	uadd8	r7, r7, r12
	sel	r2, r2, r12
	uadd8	r8, r8, r12
	sel	r2, r2, r12
	uadd8	lr, lr, r12
	sel	r2, r2, r12
	cmp	r2, #0
	beq	3b
	@ The terminator is in the block just read: find its word.
	subs	r0, r0, #32
4:	ldr	r2, [r0], #4
	uadd8	r2, r2, r12
	sel	r2, r9, r12
	cmp	r2, #0
	beq	4b
	b	.Lfound
	.size strlen, . - strlen

	.section .note.GNU-stack,"",%progbits
