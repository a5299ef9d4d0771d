@ Float addition, multiplication and division for finite normal operands whose result stays
@ clear of the ends of the range. Everything else goes to the portable bodies (__kv_fp_fadd,
@ __kv_fp_fmul, __kv_fp_fdiv) with the operands as they came.
@
@ Rounding, nearest with ties to even, is the same everywhere: the truncated result is packed
@ by adding the significand (leading one included) to sign | (exponent - 1) << 23, the guard
@ bit adds one, and an exact tie then clears the last bit again (an odd one became even, an
@ even one gets back its own value).
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	@ Exponent field of \x (shifted left by one) outside [2, 0xfd]: to \slow.
	.macro inner x, slow
	sub	r12, \x, #0x02000000
	cmn	r12, #0x04000000
	bcs	\slow
	.endm

	@ Addition once |a| >= |b| is known: both significands with the leading one at bit 31,
	@ the smaller one aligned to the larger with its shifted-out bits top-aligned in r1. Ends
	@ at .Lround_add, or returns.
	.macro add_ordered a, b, a2, b2
	lsr	r12, \a2, #24
	sub	r12, r12, \b2, lsr #24	@ exponent difference
	cmp	r12, #26
	bhs	9f			@ b is below a quarter of a's last place
	lsl	r2, \a, #8
	orr	r2, r2, #0x80000000
	lsl	r3, \b, #8
	orr	r3, r3, #0x80000000
	teq	\a, \b
	sub	r0, \a, r2, lsr #8	@ sign | (exponent - 1) << 23
	rsb	r1, r12, #32
	lsl	r1, r3, r1		@ shifted out (nothing when the difference is 0)
	lsr	r3, r3, r12
	bmi	7f
	adds	r2, r2, r3
	bcc	.Lround_add
	rrxs	r2, r2
	rrx	r1, r1			@ bit 0 is clear: at most 25 bits were shifted out
	add	r0, r0, #0x800000
	b	.Lround_add
7:	cmp	r12, #2
	blo	6f
	rsbs	r1, r1, #0
	sbcs	r2, r2, r3
	bmi	.Lround_add
	adds	r1, r1, r1
	adc	r2, r2, r2
	sub	r0, r0, #0x800000
	b	.Lround_add
6:	@ Exponents at most one apart: the difference is exact (r1 is 0) and not negative.
	subs	r2, r2, r3
	beq	5f
	clz	r3, r2
	lsl	r2, r2, r3
	ubfx	r12, r0, #23, #8	@ exponent - 1
	cmp	r3, r12
	bhi	4f			@ below the normal range
	sub	r0, r0, r3, lsl #23
	b	.Lround_add
4:	and	r0, r0, #0x80000000
	bx	lr
5:	movs	r0, #0
	bx	lr
9:	mov	r0, \a
	bx	lr
	.endm

	.p2align 2
entry __aeabi_fsub
entry _fsub
	eor	r1, r1, #0x80000000
	@ fall through
entry __aeabi_fadd
entry _fadd
	lsl	r2, r0, #1
	lsl	r3, r1, #1
	inner	r2, .Lslow_add
	inner	r3, .Lslow_add
	cmp	r2, r3
	blo	.Lswapped
	add_ordered r0, r1, r2, r3
.Lswapped:
	add_ordered r1, r0, r3, r2

	@ r0 = sign | (exponent - 1) << 23, r2 the significand at bit 31, r1 the bits below.
.Lround_add:
	add	r0, r0, r2, lsr #8
	lsls	r3, r2, #25		@ C = guard bit
	it	cc
	bxcc	lr
	adds	r0, r0, #1
	orrs	r3, r3, r1
	it	eq
	biceq	r0, r0, #1
	bx	lr

.Lslow_add:
	b	__kv_fp_fadd
	.size __aeabi_fadd, . - __aeabi_fadd
	.size _fadd, . - _fadd
	.size __aeabi_fsub, . - __aeabi_fsub
	.size _fsub, . - _fsub

	@ Multiplication: exponent fields in [1, 0xfe] and u = ea + eb - 128 in [0, 0xfc], so
	@ that the result exponent (u + 1, or u + 2 for a product of at least 2) is normal.
	.p2align 2
entry __aeabi_fmul
entry _fmul
	ubfx	r2, r0, #23, #8
	ubfx	r3, r1, #23, #8
	sub	r12, r2, #1
	cmp	r12, #0xfe
	bhs	.Lslow_mul
	sub	r12, r3, #1
	cmp	r12, #0xfe
	bhs	.Lslow_mul
	add	r12, r2, r3
	sub	r12, r12, #128
	cmp	r12, #0xfd
	bhs	.Lslow_mul
	eor	r2, r0, r1
	and	r2, r2, #0x80000000
	add	r2, r2, r12, lsl #23
	lsl	r3, r0, #8
	orr	r3, r3, #0x80000000
	lsl	r12, r1, #8
	orr	r12, r12, #0x80000000
	umull	r1, r3, r3, r12		@ the low 16 bits of r1 are zero
	cmp	r3, #0
	bmi	1f
	add	r0, r2, r3, lsr #7
	lsls	r12, r3, #26		@ C = guard bit
	it	cc
	bxcc	lr
	adds	r0, r0, #1
	orrs	r12, r12, r1
	it	eq
	biceq	r0, r0, #1
	bx	lr
1:	add	r0, r2, r3, lsr #8
	add	r0, r0, #0x800000
	lsls	r12, r3, #25		@ C = guard bit
	it	cc
	bxcc	lr
	adds	r0, r0, #1
	orrs	r12, r12, r1
	it	eq
	biceq	r0, r0, #1
	bx	lr
.Lslow_mul:
	b	__kv_fp_fmul
	.size __aeabi_fmul, . - __aeabi_fmul
	.size _fmul, . - _fmul

	@ Division: exponent fields in [1, 0xfe] and u = ea - eb + 125 in [0, 0xfc], so that the
	@ result exponent (u + 1, or u + 2 when a's significand is not below b's) is normal. The
	@ quotient comes from a reciprocal of b, the table seed refined by two Newton-Raphson
	@ steps, which stays below 2^63 / b: one remainder check then makes it exact.
	.p2align 2
entry __aeabi_fdiv
entry _fdiv
	ubfx	r2, r0, #23, #8
	ubfx	r3, r1, #23, #8
	sub	r12, r2, #1
	cmp	r12, #0xfe
	bhs	.Lslow_div
	sub	r12, r3, #1
	cmp	r12, #0xfe
	bhs	.Lslow_div
	sub	r12, r2, r3
	add	r12, r12, #125
	cmp	r12, #0xfd
	bhs	.Lslow_div
	push	{r4, r5, lr}
	eor	r2, r0, r1
	and	r2, r2, #0x80000000
	add	r2, r2, r12, lsl #23
	lsl	r1, r1, #8
	orr	r1, r1, #0x80000000	@ b's significand at bit 31
	ubfx	r0, r0, #0, #23
	orr	r0, r0, #0x800000	@ a's at bit 23
	cmp	r0, r1, lsr #8
	ite	lo
	lsllo	r0, r0, #1
	addhs	r2, r2, #0x800000	@ a quotient of at least 1
	@ r ~ 2^63 / b, from below.
	ldr	r3, .Lseed
	ubfx	r12, r1, #23, #8
.Lseed_pc:
	add	r3, pc
	ldrh	r3, [r3, r12, lsl #1]
	lsl	r3, r3, #16
	.irp step, 1, 2
	umull	r4, r5, r1, r3
	rsbs	r4, r4, #0
	sbc	r5, r5, r5, lsl #1	@ (2^63 - b r) >> 32, as 2^63 wraps away
	lsl	r5, r5, #1
	orr	r5, r5, r4, lsr #31
	umull	r4, r5, r3, r5
	add	r3, r3, r5
	.endr
	@ q = floor(a 2^24 / b) or one less, with the remainder.
	umull	r4, r5, r0, r3
	lsl	r5, r5, #1
	orr	r5, r5, r4, lsr #31
	lsr	r1, r1, #8
	lsl	r0, r0, #24
	mls	r12, r5, r1, r0
	cmp	r12, r1
	itt	hs
	addhs	r5, r5, #1
	subhs	r12, r12, r1
	@ The last bit of q is the guard bit, a non-zero remainder the sticky one.
	add	r0, r2, r5, lsr #1
	lsrs	r5, r5, #1
	it	cc
	popcc	{r4, r5, pc}
	adds	r0, r0, #1
	cmp	r12, #0
	it	eq
	biceq	r0, r0, #1
	pop	{r4, r5, pc}
.Lslow_div:
	b	__kv_fp_fdiv
	.p2align 2
.Lseed:
	.word	__kv_fp_recip_seed - (.Lseed_pc + 4)
	.size __aeabi_fdiv, . - __aeabi_fdiv
	.size _fdiv, . - _fdiv

	.section .note.GNU-stack,"",%progbits
