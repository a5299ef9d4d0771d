@ int strcmp(const char *a, const char *b) -- library-internal, bytes compared unsigned.
@ With both strings at the same word offset the bulk compares words: a word decides when it
@ differs or holds a zero byte (UADD8 marks the non-zero bytes, SEL merges the two tests). When
@ they also share their offset within 16 bytes, 16-byte blocks are read with LDM: a block
@ never crosses a page, so reading past the terminator is harmless.
	.syntax unified
	.thumb
	.text
	.global strcmp
	.hidden strcmp
	.type strcmp, %function
	.thumb_func
	.p2align 2
strcmp:
	orr	r2, r0, r1
	lsls	r2, r2, #30
	beq	.Lwords
	eor	r2, r0, r1
	tst	r2, #3
	bne	.Lbytes
1:	ldrb	r2, [r0], #1
	ldrb	r3, [r1], #1
	cmp	r2, #1
	it	cs
	cmpcs	r2, r3
	bne	.Ldiffer
	tst	r0, #3
	bne	1b
	b	.Lwords

.Lbytes:
	@ Different offsets in the word: align a, then read b with unaligned word loads, never past
	@ the end of b's page (the word that would straddle it goes byte by byte).
	tst	r0, #3
	beq	.Lmixed
	ldrb	r2, [r0], #1
	ldrb	r3, [r1], #1
	cmp	r2, #1
	it	cs
	cmpcs	r2, r3
	beq	.Lbytes
.Ldiffer:
	subs	r0, r2, r3
	bx	lr

.Lmixed:
	push	{r4-r11, lr}
	mvn	r9, #0
6:	ubfx	r5, r1, #0, #12
	rsb	r5, r5, #4096
	lsrs	r5, r5, #2		@ whole words of b left in its page
	beq	8f
7:	ldr	r2, [r0], #4
	ldr	r3, [r1], #4
	uadd8	r4, r2, r9
	eor	r4, r2, r3
	sel	r4, r4, r9
	cmp	r4, #0
	bne	.Lend
	subs	r5, r5, #1
	bne	7b
8:	movs	r5, #4
9:	ldrb	r2, [r0], #1
	ldrb	r3, [r1], #1
	cmp	r2, #1
	it	cs
	cmpcs	r2, r3
	bne	10f
	subs	r5, r5, #1
	bne	9b
	b	6b
10:	subs	r0, r2, r3
	pop	{r4-r11, pc}

.Lwords:
	push	{r4-r11, lr}
	mvn	r9, #0
	mov	r10, #0
	orr	r2, r0, r1
	tst	r2, #15
	beq	.Lblock
	eor	r2, r0, r1
	tst	r2, #15
	bne	.Lword_loop
2:	ldr	r2, [r0], #4
	ldr	r3, [r1], #4
	uadd8	r4, r2, r9
	eor	r4, r2, r3
	sel	r4, r4, r9
	cmp	r4, #0
	bne	.Lend
	tst	r0, #15
	bne	2b

.Lblock:
	ldmia	r0!, {r2, r3, r5, r6}
	ldmia	r1!, {r7, r8, r12, lr}
	uadd8	r4, r2, r9
	sel	r11, r10, r9
	uadd8	r4, r3, r9
	sel	r11, r11, r9
	uadd8	r4, r5, r9
	sel	r11, r11, r9
	uadd8	r4, r6, r9
	sel	r11, r11, r9
	cmp	r2, r7
	itt	eq
	cmpeq	r3, r8
	cmpeq	r5, r12
	itt	eq
	cmpeq	r6, lr
	cmpeq	r11, #0
	beq	.Lblock
	@ The decision lies in this block: find its word among the registers.
	uadd8	r4, r2, r9
	eor	r4, r2, r7
	sel	r4, r4, r9
	cbnz	r4, 3f
	uadd8	r4, r3, r9
	eor	r4, r3, r8
	sel	r4, r4, r9
	cbnz	r4, 4f
	uadd8	r4, r5, r9
	eor	r4, r5, r12
	sel	r4, r4, r9
	cbnz	r4, 5f
	uadd8	r4, r6, r9
	eor	r4, r6, lr
	sel	r4, r4, r9
	mov	r2, r6
	mov	r3, lr
	b	.Lend
3:	mov	r3, r7
	b	.Lend
4:	mov	r2, r3
	mov	r3, r8
	b	.Lend
5:	mov	r2, r5
	mov	r3, r12
	b	.Lend

.Lword_loop:
	ldr	r2, [r0], #4
	ldr	r3, [r1], #4
	uadd8	r4, r2, r9
	eor	r4, r2, r3
	sel	r4, r4, r9
	cmp	r4, #0
	beq	.Lword_loop

.Lend:
	@ r4 marks the bytes that differ or end a; the lowest one decides.
	rbit	r4, r4
	clz	r4, r4
	bic	r4, r4, #7
	lsr	r2, r2, r4
	lsr	r3, r3, r4
	uxtb	r2, r2
	uxtb	r3, r3
	subs	r0, r2, r3
	pop	{r4-r11, pc}
	.size strcmp, . - strcmp

	.section .note.GNU-stack,"",%progbits
