@ int strcmp(const char *a, const char *b) -- library-internal, bytes compared unsigned.
@ With both strings at the same word offset the bulk compares words: a word decides when it
@ differs or holds a zero byte (UADD8 marks the non-zero bytes, SEL merges the two tests).
@ When they also share their offset within 16 bytes, blocks are read with LDM: USADA8 sums the
@ byte differences of a block (zero exactly when the blocks are equal), the AND of a's words
@ shows each zero byte (and sometimes one that no word has), and one SEL merges the two. An
@ aligned block never crosses a page, so reading past the terminator is harmless. Strings at
@ the same offset within 64 bytes use 64-byte blocks, others 16-byte ones.
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
	lsls	r2, r2, #26
	bne	.Lnot64
	push	{r4-r11, lr}
	mvn	r9, #0

	@ One 64-byte block: r6 = sum of the byte differences, r11 and lr = AND of a's words in
	@ each half, r2 = 0 only for equal blocks in which the AND shows no zero byte.
	.macro block64 first=0
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r7, r8, r10, r12}
	usad8	r6, r2, r7
	usada8	r6, r3, r8, r6
	usada8	r6, r4, r10, r6
	usada8	r6, r5, r12, r6
	and	r11, r2, r3
	and	r4, r4, r5
	and	r11, r11, r4
	.if \first
	uadd8	r3, r11, r9
	sel	r3, r6, r9
	cbz	r3, 1f
	b	.Lfirst16
1:
	.endif
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r7, r8, r10, r12}
	usada8	r6, r2, r7, r6
	usada8	r6, r3, r8, r6
	usada8	r6, r4, r10, r6
	usada8	r6, r5, r12, r6
	and	r2, r2, r3
	and	r4, r4, r5
	and	r11, r11, r2
	and	r11, r11, r4
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r7, r8, r10, r12}
	usada8	r6, r2, r7, r6
	usada8	r6, r3, r8, r6
	usada8	r6, r4, r10, r6
	usada8	r6, r5, r12, r6
	and	lr, r2, r3
	and	r4, r4, r5
	and	lr, lr, r4
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r7, r8, r10, r12}
	usada8	r6, r2, r7, r6
	usada8	r6, r3, r8, r6
	usada8	r6, r4, r10, r6
	usada8	r6, r5, r12, r6
	and	r2, r2, r3
	and	r4, r4, r5
	and	lr, lr, r2
	and	lr, lr, r4
	and	r2, r11, lr
	uadd8	r2, r2, r9
	sel	r2, r6, r9
	.endm

	@ The first 16 bytes are tested on their own, so that short strings and early
	@ differences do not pay for a whole block.
	block64 1
	cbz	r2, .Lblock64
	b	.Lblock64_end
.Lblock64:
	@ Two blocks a turn, so that the first one's test is a single forward branch.
	block64
	cbz	r2, 1f
	b	.Lblock64_end
1:	block64
	cmp	r2, #0
	beq	.Lblock64
.Lblock64_end:
	@ Equal blocks: the strings are too if a's block holds a real zero byte. r2 = 0 when the
	@ blocks are equal and the first half's AND shows no zero byte.
	uadd8	r2, r11, r9
	sel	r2, r6, r9
	cbnz	r2, .Lfirst_half
.Lsecond_half:
	ldmdb	r0, {r3-r5, r7, r8, r10-r12}
	.irp w, r3, r4, r5, r7, r8, r10, r11, r12
	uadd8	r2, \w, r9
	sel	r2, r6, r9
	cbnz	r2, .Lzero
	.endr
	b	.Lblock64
.Lzero:
	movs	r0, #0
	pop	{r4-r11, pc}
.Lfirst_half:
	cbz	r6, 1f
	subs	r0, r0, #64		@ the blocks differ: find the word
	subs	r1, r1, #64
	b	.Lword_loop
1:	sub	r2, r0, #32
	ldmdb	r2, {r3-r5, r7, r8, r10-r12}
	.irp w, r3, r4, r5, r7, r8, r10, r11, r12
	uadd8	r2, \w, r9
	sel	r2, r6, r9
	cbnz	r2, .Lzero_first
	.endr
	b	.Lsecond_half
.Lzero_first:
	movs	r0, #0
	pop	{r4-r11, pc}

.Lnot64:
	eor	r2, r0, r1
	tst	r2, #3
	bne	.Lbytes
	tst	r0, #3
	beq	.Lwords
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
	eor	r2, r0, r1
	tst	r2, #15
	bne	.Lword_loop
2:	tst	r0, #15
	beq	.Lto64
	ldr	r2, [r0], #4
	ldr	r3, [r1], #4
	uadd8	r4, r2, r9
	eor	r4, r2, r3
	sel	r4, r4, r9
	cmp	r4, #0
	bne	.Lend
	b	2b

	@ One 16-byte block: r6 sums the byte differences, r11 is the AND of a's words; a block
	@ that shows neither goes on at \next, one with a false zero byte at \again. \hit names
	@ the path of a block that shows either, which the first 16 bytes of the 64-byte bulk
	@ share.
	.macro block16 next, again, hit
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r7, r8, r10, r12}
	usad8	r6, r2, r7
	usada8	r6, r3, r8, r6
	usada8	r6, r4, r10, r6
	usada8	r6, r5, r12, r6
	and	r11, r2, r3
	and	lr, r4, r5
	and	r11, r11, lr
	uadd8	r11, r11, r9
	sel	r11, r6, r9
	cmp	r11, #0
	beq	\next
	.ifnb \hit
\hit:
	.endif
	cbz	r6, 1f
	subs	r0, r0, #16
	subs	r1, r1, #16
	b	.Lword_loop
1:	ldmdb	r0, {r2-r5}
	.irp w, r2, r3, r4, r5
	uadd8	r7, \w, r9
	sel	r7, r6, r9
	cbnz	r7, 2f
	.endr
	b	\again
2:	movs	r0, #0
	pop	{r4-r11, pc}
	.endm

.Lto64:
	@ Both 16-byte aligned: with the same offset within 64 bytes, 16-byte blocks up to the
	@ 64-byte bulk.
	eor	r2, r0, r1
	tst	r2, #48
	bne	.Lblock16
3:	tst	r0, #48
	beq	.Lblock64
	block16 3b, 3b, .Lfirst16

.Lblock16:
	block16 .Lblock16, .Lblock16

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
