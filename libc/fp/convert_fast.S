@ The common conversions for operands that need no special treatment; the rest (zero and
@ subnormal operands where they matter, infinities, NaNs, saturation, results outside the
@ normal range) go to the portable bodies with the operand as it came.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	@ Double to int32, truncating. |x| < 1 (zeros and subnormals too) gives 0.
	.p2align 2
entry __aeabi_d2iz
entry _dfix
	ubfx	r2, r1, #20, #11
	subw	r2, r2, #1023		@ unbiased exponent
	cmp	r2, #31
	bhs	1f
	lsl	r3, r1, #11
	orr	r3, r3, r0, lsr #21
	orr	r3, r3, #0x80000000	@ significand, leading one at bit 31
	rsb	r2, r2, #31
	lsr	r0, r3, r2
	cmp	r1, #0
	it	mi
	negmi	r0, r0
	bx	lr
1:	bge	2f			@ 2^31 and beyond, infinities, NaNs
	movs	r0, #0
	bx	lr
2:	b	__kv_fp_dfix
	.size __aeabi_d2iz, . - __aeabi_d2iz
	.size _dfix, . - _dfix

	@ Int32 to double, exact.
	.p2align 2
entry __aeabi_i2d
entry _dflt
	ands	r3, r0, #0x80000000
	beq	1f
	negs	r0, r0			@ INT32_MIN stays 2^31 as unsigned
	b	2f
1:	cbz	r0, 3f
2:	clz	r2, r0
	lsl	r12, r0, r2		@ leading one at bit 31
	movw	r1, #1053		@ exponent field less one (the leading one adds it) for bit 31
	sub	r1, r1, r2
	add	r1, r3, r1, lsl #20
	add	r1, r1, r12, lsr #11
	lsl	r0, r12, #21
	bx	lr
3:	movs	r1, #0
	bx	lr
	.size __aeabi_i2d, . - __aeabi_i2d
	.size _dflt, . - _dflt

	@ Float to double, exact, for exponent fields other than 0 and 0xff.
	.p2align 2
entry __aeabi_f2d
entry _f2d
	lsl	r2, r0, #1
	add	r2, r2, #0x01000000
	cmp	r2, #0x02000000
	blo	1f
	asr	r1, r0, #3
	bic	r1, r1, #0x70000000	@ sign, then exponent and fraction shifted into place
	add	r1, r1, #0x38000000	@ rebias: 1023 - 127 = 896
	lsl	r0, r0, #29
	bx	lr
1:	b	__kv_fp_f2d
	.size __aeabi_f2d, . - __aeabi_f2d
	.size _f2d, . - _f2d

	@ Double to float, rounded, when the float exponent field is in [1, 0xfe]; a rounding carry
	@ out of 0xfe gives the infinity it should.
	.p2align 2
entry __aeabi_d2f
entry _d2f
	sub	r2, r1, #0x38000000	@ rebias: sign | (exponent - 896) << 20 | fraction
	lsl	r3, r2, #1
	sub	r3, r3, #0x200000
	cmp	r3, #0x1fc00000
	bhs	1f
	lsl	r3, r2, #3
	orr	r3, r3, r0, lsr #29	@ exponent and 23 fraction bits; the sign shifted out
	bfi	r2, r3, #0, #31		@ under the sign again
	lsl	r0, r0, #3		@ the bits below, top-aligned
	cmp	r0, #0x80000000
	it	eq
	lsleq	r0, r2, #31		@ a tie rounds up only an odd last place
	add	r0, r2, r0, lsr #31
	bx	lr
1:	b	__kv_fp_d2f
	.size __aeabi_d2f, . - __aeabi_d2f
	.size _d2f, . - _d2f

	.section .note.GNU-stack,"",%progbits
