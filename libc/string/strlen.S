@ size_t strlen(const char *s) -- library-internal.
@ UADD8 with 0xffffffff sets a GE bit for every non-zero byte; SEL turns that into "some byte
@ was zero". The bulk reads 32-byte blocks at 32-byte alignment, which never cross a
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
	b	5f
3:	@ AND of the block's words has a zero byte wherever a word has one (and sometimes where
	@ none has): a cheap test that never misses, confirmed word by word below.
	ldmia	r0!, {r2-r8, lr}
	and	r2, r2, r3
	and	r4, r4, r5
	and	r6, r6, r7
	and	r8, r8, lr
	and	r2, r2, r4
	and	r6, r6, r8
	and	r2, r2, r6
	uadd8	r2, r2, r12
	sel	r2, r9, r12
	cmp	r2, #0
	beq	3b
	subs	r0, r0, #32
	add	r3, r0, #32
4:	ldr	r2, [r0], #4
	uadd8	r2, r2, r12
	sel	r2, r9, r12
	cmp	r2, #0
	bne	.Lfound
	cmp	r0, r3
	bne	4b
	b	3b		@ no zero after all: bytes of different words cancelled
5:	ldr	r2, [r0], #4
	uadd8	r2, r2, r12
	sel	r2, r9, r12
	cmp	r2, #0
	beq	5b
	b	.Lfound
	.size strlen, . - strlen

	.section .note.GNU-stack,"",%progbits
