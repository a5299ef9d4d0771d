@ Double addition and subtraction for finite normal operands. Anything else (a zero, subnormal,
@ infinite or NaN operand, an exponent near either end of the range, a cancellation of more
@ than one bit) is left to the portable body, __kv_fp_dadd, with the operands as they came.
@ Subtraction is addition of the negated operand, there as here.
@
@ Working form: the larger operand's significand in r4:r0 (leading one at bit 20 of r4), the
@ smaller one aligned to it in r5:r8 with the bits shifted out top-aligned in lr (a sticky bit
@ in bit 0 when more were lost), r7 = sign | (exponent - 1) << 20, so that adding the rounded
@ significand to r7 packs the result and a rounding carry steps the exponent.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	@ The body once the larger operand is known: alo:ahi larger, blo:bhi smaller, r6 = the
	@ exponent difference. Only the heavy-cancellation exit reads the operands again, and the
	@ portable body is commutative for finite operands.
	.macro ordered alo, ahi, blo, bhi
	ubfx	r4, \ahi, #0, #20
	orr	r4, r4, #0x100000
	ubfx	r5, \bhi, #0, #20
	orr	r5, r5, #0x100000
	sub	r7, \ahi, r4
	cmp	r6, #32
	bhs	8f
	rsb	r12, r6, #32
	lsl	lr, \blo, r12
	lsr	r8, \blo, r6
	lsl	r12, r5, r12
	orr	r8, r8, r12
	lsr	r5, r5, r6
	teq	\ahi, \bhi
	bmi	7f
	adds	r0, \alo, r8
	adc	r4, r4, r5
	cmp	r4, #0x200000
	blo	.Lround
	lsrs	r4, r4, #1
	rrxs	r0, r0
	rrx	lr, lr			@ bit 0 was clear: at most 31 bits were shifted out
	add	r7, r7, #0x100000
	b	.Lround
7:	cmp	r6, #2
	blo	6f
	rsbs	lr, lr, #0
	sbcs	r0, \alo, r8
	sbc	r4, r4, r5
	cmp	r4, #0x100000
	bhs	.Lround
	lsls	lr, lr, #1
	adcs	r0, r0, r0
	adc	r4, r4, r4
	sub	r7, r7, #0x100000
	b	.Lround
6:	@ Exponents at most one apart: the difference is exact, and negative only when equal.
	rsbs	lr, lr, #0
	sbcs	r12, \alo, r8
	sbcs	r5, r4, r5
	bpl	.Lclose
	negs	r12, r12
	sbc	r5, r5, r5, lsl #1
	eor	r7, r7, #0x80000000
	b	.Lclose
8:	@ At least 32 bits apart; from 55 on the smaller operand cannot move the larger one.
	cmp	r6, #55
	bhs	5f
	sub	r6, r6, #32
	rsb	r12, r6, #32
	lsls	r8, \blo, r12
	lsr	lr, \blo, r6
	lsl	r12, r5, r12
	orr	lr, lr, r12
	it	ne
	orrne	lr, lr, #1
	lsr	r8, r5, r6
	teq	\ahi, \bhi
	bmi	4f
	adds	r0, \alo, r8
	adc	r4, r4, #0
	cmp	r4, #0x200000
	blo	.Lround
	lsrs	r4, r4, #1
	rrxs	r0, r0
	rrxs	lr, lr
	it	cs
	orrcs	lr, lr, #1
	add	r7, r7, #0x100000
	b	.Lround
4:	rsbs	lr, lr, #0
	sbcs	r0, \alo, r8
	sbc	r4, r4, #0
	cmp	r4, #0x100000
	bhs	.Lround
	lsls	lr, lr, #1
	adcs	r0, r0, r0
	adc	r4, r4, r4
	sub	r7, r7, #0x100000
	b	.Lround
5:	mov	r0, \alo
	mov	r1, \ahi
	pop	{r4, r5, r6, r7, r8, pc}
	.endm

	.p2align 2
entry __aeabi_dsub
entry _dsub
	eor	r3, r3, #0x80000000
	@ fall through
entry __aeabi_dadd
entry _dadd
	push	{r4, r5, r6, r7, r8, lr}
	@ Both exponent fields in [2, 0x7fd]: hi << 1 less 2 << 21 stays below 0x7fc << 21.
	lsl	r4, r1, #1
	lsl	r5, r3, #1
	sub	r6, r4, #0x400000
	cmn	r6, #0x800000
	bcs	.Lslow
	sub	r6, r5, #0x400000
	cmn	r6, #0x800000
	bcs	.Lslow
	lsr	r6, r4, #21
	subs	r6, r6, r5, lsr #21
	bmi	.Lswapped
	ordered	r0, r1, r2, r3
.Lswapped:
	negs	r6, r6
	ordered	r2, r3, r0, r1

	@ Exact difference r5:r12, possibly one bit in lr: at most one place of normalisation here.
.Lclose:
	cmp	r5, #0x100000
	bhs	1f
	cmp	r5, #0x80000
	blo	.Lslow
	lsls	lr, lr, #1
	adcs	r12, r12, r12
	adc	r5, r5, r5
	sub	r7, r7, #0x100000
1:	mov	r0, r12
	mov	r4, r5
	@ fall through
	@ Nearest, ties to even: on a tie only an odd last place rounds up.
.Lround:
	cmp	lr, #0x80000000
	it	eq
	lsleq	lr, r0, #31
	adds	r0, r0, lr, lsr #31
	adc	r1, r4, r7
	pop	{r4, r5, r6, r7, r8, pc}

.Lslow:
	pop	{r4, r5, r6, r7, r8, lr}
	b	__kv_fp_dadd
	.size __aeabi_dadd, . - __aeabi_dadd
	.size _dadd, . - _dadd
	.size __aeabi_dsub, . - __aeabi_dsub
	.size _dsub, . - _dsub

	.section .note.GNU-stack,"",%progbits
