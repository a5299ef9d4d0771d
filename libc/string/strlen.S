@ size_t strlen(const char *s) -- library-internal.
@ UADD8 with 0xffffffff sets a GE bit for every non-zero byte; SEL turns that into "some byte
@ was zero". Steps of 4, 8, 16 and 32 bytes bring the pointer to 64-byte alignment; the bulk
@ then ANDs the sixteen words of a 64-byte block and tests the AND once. An aligned block never
@ crosses a page and always holds a byte of the string, so reading past the terminator is
@ harmless. The AND shows a zero byte wherever a word has one, and sometimes where none has
@ (bytes of different words with no bit in common): each hit is confirmed word by word, and
@ after a false one the search goes on behind it, testing every word.
	.syntax unified
	.thumb
	.text
	.global strlen
	.hidden strlen
	.type strlen, %function
	.thumb_func
	.p2align 2

	@ r12 = 0xffffffff, lr = 0: r2 becomes 0xff in each zero byte of \w, and a hit goes to
	@ \label.
	.macro zword w, label
	uadd8	r2, \w, r12
	sel	r2, lr, r12
	cbnz	r2, \label
	.endm
	@ The word that held the hit is at r0 - \back.
	.macro hit back
	.if \back
	sub	r0, r0, #\back
	.endif
	b	.Lfound
	.endm

strlen:
	push	{r4-r11, lr}
	mov	r1, r0			@ start
	bic	r0, r0, #3
	mvn	r12, #0
	mov	lr, #0
	ldr	r2, [r0], #4
	ands	r3, r1, #3
	beq	1f
	@ Bytes before the start count as non-zero.
	lsls	r3, r3, #3
	lsl	r3, r12, r3
	orn	r2, r2, r3
1:	zword	r2, .Lfound4
	tst	r0, #4
	beq	.Lstep8
	ldr	r3, [r0], #4
	zword	r3, .Lfound4
.Lstep8:				@ r0 is 8-byte aligned here
	tst	r0, #8
	beq	.Lstep16
	ldrd	r3, r4, [r0], #8
	and	r2, r3, r4
	uadd8	r2, r2, r12
	sel	r2, lr, r12
	cbz	r2, .Lstep16
	zword	r3, 1f
	zword	r4, .Lfound4
	b	.Lstep16		@ a false hit
1:	subs	r0, r0, #4
.Lfound4:
	subs	r0, r0, #4
.Lfound:
	@ r0 is the word holding the first zero byte, marked 0xff in r2.
	rbit	r2, r2
	clz	r2, r2
	add	r0, r0, r2, lsr #3
	subs	r0, r0, r1
	pop	{r4-r11, pc}

.Lstep16:
	tst	r0, #16
	beq	.Lstep32
	ldmia	r0!, {r3-r6}
	and	r2, r3, r4
	and	r11, r5, r6
	and	r2, r2, r11
	uadd8	r2, r2, r12
	sel	r2, lr, r12
	cbz	r2, .Lstep32
	zword	r3, 1f
	zword	r4, 2f
	zword	r5, 3f
	zword	r6, 4f
	b	.Lstep32
1:	hit	16
2:	hit	12
3:	hit	8
4:	hit	4

.Lstep32:
	tst	r0, #32
	beq	.Lblock
	ldmia	r0!, {r3-r10}
	and	r2, r3, r4
	and	r11, r5, r6
	and	r2, r2, r11
	and	r11, r7, r8
	and	r2, r2, r11
	and	r11, r9, r10
	and	r2, r2, r11
	uadd8	r2, r2, r12
	sel	r2, lr, r12
	cbz	r2, .Lblock
	b	.Lhalf

	@ One 64-byte block: r11 = AND of its first half, r2 = 0 unless the AND of all of it
	@ shows a zero byte.
	.macro block
	ldmia	r0!, {r3-r10}
	and	r3, r3, r4
	and	r5, r5, r6
	and	r7, r7, r8
	and	r9, r9, r10
	and	r3, r3, r5
	and	r7, r7, r9
	and	r11, r3, r7
	ldmia	r0!, {r3-r10}
	and	r3, r3, r4
	and	r5, r5, r6
	and	r7, r7, r8
	and	r9, r9, r10
	and	r3, r3, r5
	and	r7, r7, r9
	and	r3, r3, r7
	and	r2, r11, r3
	uadd8	r2, r2, r12
	sel	r2, lr, r12
	.endm

.Lblock:
	@ Two blocks a turn, so that the first one's test is a single forward branch.
	block
	cbz	r2, 1f
	b	.Lblock_end
1:	block
	cmp	r2, #0
	beq	.Lblock
.Lblock_end:
	uadd8	r2, r11, r12
	sel	r2, lr, r12
	cbz	r2, .Lsecond
	sub	r0, r0, #32		@ the first half, then the second after a false hit
	b	.Lhalf
.Lsecond:
	@ r0 is the end of a block whose second half showed a zero byte.
	ldmdb	r0, {r3-r10}
	zword	r3, 1f
	zword	r4, 2f
	zword	r5, 3f
	zword	r6, 4f
	zword	r7, 5f
	zword	r8, 6f
	zword	r9, 7f
	zword	r10, 8f
	b	.Lexact			@ a false hit
1:	hit	32
2:	hit	28
3:	hit	24
4:	hit	20
5:	hit	16
6:	hit	12
7:	hit	8
8:	hit	4
.Lhalf:
	@ The 32 bytes below r0 showed a zero byte.
	ldmdb	r0, {r3-r10}
	zword	r3, 1f
	zword	r4, 2f
	zword	r5, 3f
	zword	r6, 4f
	zword	r7, 5f
	zword	r8, 6f
	zword	r9, 7f
	zword	r10, 8f
	@ A false hit: after the 32-byte step the bulk goes on, after a block's first half
	@ its second half is next.
	tst	r0, #32
	beq	.Lexact
	add	r0, r0, #32
	b	.Lsecond
1:	hit	32
2:	hit	28
3:	hit	24
4:	hit	20
5:	hit	16
6:	hit	12
7:	hit	8
8:	hit	4

.Lexact:
	@ After a false hit the words of a block are tested one by one (r2 collects 0xff in each
	@ byte position where one of them has a zero byte): text that mixes capitals with spaces
	@ or digits ANDs to false zero bytes in most blocks.
	ldmia	r0!, {r3-r10}
	uadd8	r11, r3, r12
	sel	r2, lr, r12
	.irp w, r4, r5, r6, r7, r8, r9, r10
	uadd8	r11, \w, r12
	sel	r2, r2, r12
	.endr
	ldmia	r0!, {r3-r10}
	.irp w, r3, r4, r5, r6, r7, r8, r9, r10
	uadd8	r11, \w, r12
	sel	r2, r2, r12
	.endr
	cmp	r2, #0
	beq	.Lexact
	sub	r0, r0, #32		@ the first half, then the second
	b	.Lhalf
	.size strlen, . - strlen

	.section .note.GNU-stack,"",%progbits
