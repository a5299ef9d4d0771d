@ int strcmp(const char *a, const char *b) -- library-internal, bytes compared unsigned.
@ With both strings at the same word offset the bulk compares words: a word decides when it
@ differs or holds a zero byte (UADD8 marks the non-zero bytes, SEL merges the two tests).
@ When they also share their offset within 16 bytes, blocks are read with LDM: USADA8 sums the
@ byte differences of a block (zero exactly when the blocks are equal), the AND of a's words
@ shows each zero byte (and sometimes one that no word has), and one SEL merges the two. An
@ aligned block never crosses a page, so reading past the terminator is harmless. Strings at
@ the same offset within 64 bytes use 64-byte blocks, others 16-byte ones; the words of a block
@ that shows a difference or a zero byte are then examined one by one.
	.syntax unified
	.thumb
	.text
	@ Registers of the bulk: a's words of a quarter block in r2-r5, b's in r8, r10, r12 and lr;
	@ r6 sums the byte differences, r11 and r7 are the ANDs of a's words in each half.
	@ One 64-byte block leaves r2 = 0 only when the blocks are equal and the AND shows no zero
	@ byte.
	.macro quarter
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	usada8	r6, r2, r8, r6
	usada8	r6, r3, r10, r6
	usada8	r6, r4, r12, r6
	usada8	r6, r5, lr, r6
	.endm
	.macro block64 first=0
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	usad8	r6, r2, r8
	usada8	r6, r3, r10, r6
	usada8	r6, r4, r12, r6
	usada8	r6, r5, lr, r6
	and	r11, r2, r3
	and	r11, r11, r4
	and	r11, r11, r5
	.if \first
	uadd8	r7, r11, r9
	sel	r7, r6, r9
	cbz	r7, 1f
	b	.Lfirst16
1:
	.endif
	quarter
	.if \first
	@ The first 16 bytes hold no zero byte: the first half's AND can leave them out.
	and	r11, r2, r3
	.else
	and	r2, r2, r3
	and	r11, r11, r2
	.endif
	and	r4, r4, r5
	and	r11, r11, r4
	quarter
	and	r7, r2, r3
	and	r4, r4, r5
	and	r7, r7, r4
	quarter
	and	r2, r2, r3
	and	r4, r4, r5
	and	r7, r7, r2
	and	r7, r7, r4
	and	r2, r11, r7
	uadd8	r2, r2, r9
	sel	r2, r6, r9
	.endm

	@ r7 marks the bytes where \a differs from \b or is zero.
	.macro pair_mark a, b
	uadd8	r7, \a, r9
	eor	r7, \a, \b
	sel	r7, r7, r9
	.endm

	@ With a quarter block of a in r2-r5 and of b in r8, r10, r12, lr: the first word that
	@ differs or ends a decides; falls through when none does.
	.macro decide_words
	pair_mark r2, r8
	cbnz	r7, 3f
	pair_mark r3, r10
	cbnz	r7, 4f
	pair_mark r4, r12
	cbnz	r7, 5f
	pair_mark r5, lr
	cbz	r7, 7f
	mov	r2, r5
	mov	r3, lr
	b	.Lend
3:	mov	r3, r8
	b	.Lend
4:	mov	r2, r3
	mov	r3, r10
	b	.Lend
5:	mov	r2, r4
	mov	r3, r12
	b	.Lend
7:
	.endm

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

	@ The first 16 bytes are tested on their own, so that short strings and early
	@ differences do not pay for a whole block.
	block64 1
	cbz	r2, .Lblock64
	b	.Lfirst_block_end
.Lblock64:
	@ Two blocks a turn, so that the first one's test is a single forward branch.
	block64
	cbz	r2, 1f
	b	.Lblock64_end
1:	block64
	cmp	r2, #0
	beq	.Lblock64
.Lblock64_end:
	@ r2 = 0 when the blocks are equal and the first half's AND shows no zero byte. Equal
	@ blocks: the strings are too if a's block holds a real zero byte.
	uadd8	r2, r11, r9
	sel	r2, r6, r9
	cbnz	r2, .Lnot_second
.Lsecond_half:
	ldmdb	r0, {r3-r5, r7, r8, r10-r12}
	.irp w, r3, r4, r5, r7, r8, r10, r11, r12
	uadd8	r2, \w, r9
	sel	r2, r6, r9
	cbnz	r2, .Lzero
	.endr
	b	.Lexact64		@ a false hit
.Lzero:
	movs	r0, #0
	pop	{r4-r11, pc}
.Lnot_second:
	cbz	r6, .Lfirst_half
	b	.Ldiffer64
.Lfirst_half:
	sub	r2, r0, #32
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

.Ldiffer64:
	@ The blocks differ. The first half decides when it differs too or its AND shows a zero
	@ byte (GE still holds its non-zero bytes): its byte differences are summed again, its
	@ first quarter last and on its own, so that quarter's words stay in the registers.
	subs	r0, r0, #32
	subs	r1, r1, #32
	ldmdb	r0!, {r2-r5}
	ldmdb	r1!, {r8, r10, r12, lr}
	usad8	r6, r2, r8
	usada8	r6, r3, r10, r6
	usada8	r6, r4, r12, r6
	usada8	r6, r5, lr, r6
	ldmdb	r0!, {r2-r5}
	ldmdb	r1!, {r8, r10, r12, lr}
	usad8	r7, r2, r8
	usada8	r7, r3, r10, r7
	usada8	r7, r4, r12, r7
	usada8	r7, r5, lr, r7
	add	r6, r6, r7
	sel	r6, r6, r9
	cbnz	r6, 1f
	adds	r0, r0, #32
	adds	r1, r1, #32
	b	2f
1:	and	r11, r2, r3		@ the first quarter, unless it is equal without a zero byte
	and	r11, r11, r4
	and	r11, r11, r5
	uadd8	r6, r11, r9
	sel	r6, r7, r9
	adds	r0, r0, #16
	adds	r1, r1, #16
	cbz	r6, 6f
	decide_words
6:	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	decide_words			@ none: a false zero byte, the second half decides
2:
.Lsecond_decides:
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	decide_words
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	decide_words
	b	.Lword_loop		@ not reached: the second half differs

.Lfirst16:
	@ The first 16 bytes show a difference or a zero byte; their words are in the registers.
	cbz	r6, 1f
	decide_words
1:	.irp w, r2, r3, r4, r5
	uadd8	r7, \w, r9
	sel	r7, r6, r9
	cbnz	r7, 2f
	.endr
	b	.Lexact48		@ a false zero byte
2:	movs	r0, #0
	pop	{r4-r11, pc}

.Lfirst_block_end:
	cbnz	r6, 1f
	b	.Lblock64_end
1:	@ The first block differs after its first 16 bytes. Its second quarter decides when it
	@ differs or the first half's AND, which leaves out the first 16 bytes, shows a zero byte.
	uadd8	r2, r11, r9
	subs	r0, r0, #48
	subs	r1, r1, #48
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	usad8	r6, r2, r8
	usada8	r6, r3, r10, r6
	usada8	r6, r4, r12, r6
	usada8	r6, r5, lr, r6
	sel	r6, r6, r9
	cbnz	r6, 1f
	b	.Lsecond_decides
1:	decide_words
	b	.Lsecond_decides	@ a false zero byte

	@ After a false zero byte each word of a is tested on its own: r7 collects 0xff in each
	@ byte position where one of them has a zero byte. Text that mixes capitals with spaces
	@ or digits ANDs to false zero bytes in most blocks.
	.macro equarter first=0
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	.if \first
	usad8	r6, r2, r8
	.else
	usada8	r6, r2, r8, r6
	.endif
	usada8	r6, r3, r10, r6
	usada8	r6, r4, r12, r6
	usada8	r6, r5, lr, r6
	.irp w, r2, r3, r4, r5
	uadd8	r11, \w, r9
	sel	r7, r7, r9
	.endr
	.endm

.Lexact48:				@ the rest of the first block
	movs	r7, #0
	equarter 1
	equarter
	equarter
	orrs	r2, r6, r7
	beq	.Lexact64
	subs	r0, r0, #48
	subs	r1, r1, #48
	b	.Lexact_end
.Lexact64:
	movs	r7, #0
	equarter 1
	equarter
	equarter
	equarter
	orrs	r2, r6, r7
	beq	.Lexact64
	subs	r0, r0, #64
	subs	r1, r1, #64
.Lexact_end:
	cbnz	r6, 1f
	movs	r0, #0			@ equal through a real zero byte
	pop	{r4-r11, pc}
1:	ldmia	r0!, {r2-r5}		@ the first word that differs or ends a decides
	ldmia	r1!, {r8, r10, r12, lr}
	decide_words
	b	1b

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
	uadd8	r7, r2, r9
	eor	r7, r2, r3
	sel	r7, r7, r9
	cmp	r7, #0
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
	uadd8	r7, r2, r9
	eor	r7, r2, r3
	sel	r7, r7, r9
	cmp	r7, #0
	bne	.Lend
	b	2b

	@ One 16-byte block, registers as in the bulk (r11 the AND of a's words). A block that
	@ shows neither a difference nor a zero byte goes on at \next, one with a false zero byte
	@ at \again.
	.macro block16 next, again
	ldmia	r0!, {r2-r5}
	ldmia	r1!, {r8, r10, r12, lr}
	usad8	r6, r2, r8
	usada8	r6, r3, r10, r6
	usada8	r6, r4, r12, r6
	usada8	r6, r5, lr, r6
	and	r11, r2, r3
	and	r11, r11, r4
	and	r11, r11, r5
	uadd8	r7, r11, r9
	sel	r7, r6, r9
	cmp	r7, #0
	beq	\next
	@ The words are still in the registers. Equal blocks: the strings are too if a's words
	@ hold a real zero byte. Otherwise the first word that differs or ends a decides.
	cbz	r6, 1f
	decide_words
	b	\again			@ not reached: the words differ
1:	.irp w, r2, r3, r4, r5
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
.Lalign64:
	tst	r0, #48
	beq	.Lblock64
	block16 .Lalign64, .Lalign64

.Lblock16:
	block16 .Lblock16, .Lexact16
.Lexact16:
	movs	r7, #0
	equarter 1
	orrs	r2, r6, r7
	beq	.Lexact16
	subs	r0, r0, #16
	subs	r1, r1, #16
	b	.Lexact_end

.Lword_loop:
	ldr	r2, [r0], #4
	ldr	r3, [r1], #4
	uadd8	r7, r2, r9
	eor	r7, r2, r3
	sel	r7, r7, r9
	cmp	r7, #0
	beq	.Lword_loop

.Lend:
	@ r7 marks the bytes that differ or end a; the lowest one decides.
	rbit	r7, r7
	clz	r7, r7
	bic	r7, r7, #7
	lsr	r2, r2, r7
	lsr	r3, r3, r7
	uxtb	r2, r2
	uxtb	r3, r3
	subs	r0, r2, r3
	pop	{r4-r11, pc}
	.size strcmp, . - strcmp

	.section .note.GNU-stack,"",%progbits
