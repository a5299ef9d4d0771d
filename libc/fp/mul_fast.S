@ Double multiplication for finite normal operands whose product is normal: the significand
@ product from four 32x32 multiplies (UMULL/UMAAL), the lowest word folded into a sticky bit.
@ Other operands, and exponents that could leave the normal range, go to the portable body,
@ __kv_fp_dmul, with the operands as they came.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	.p2align 2
entry __aeabi_dmul
entry _dmul
	push	{r4, r5, r6, r7, r8, lr}
	@ Exponent fields in [1, 0x7f8] and t = ea + eb - 1024 in [0, 0x7f8): the result exponent
	@ is t + 1 or t + 2, normal, and no rounding carry can reach infinity.
	ubfx	r4, r1, #20, #11
	ubfx	r5, r3, #20, #11
	sub	r6, r4, #1
	cmp	r6, #0x7f8
	bhs	.Lslow
	sub	r6, r5, #1
	cmp	r6, #0x7f8
	bhs	.Lslow
	add	r6, r4, r5
	sub	r6, r6, #1024
	cmp	r6, #0x7f8
	bhs	.Lslow
	eor	r7, r1, r3
	and	r7, r7, #0x80000000
	add	r7, r7, r6, lsl #20	@ sign | (exponent - 1) << 20 for a product below 2
	@ x = A << 11 in r5:r4, y = B in r3:r2: the product's top word holds the leading one at
	@ bit 20 (product of at least 2) or bit 19.
	lsl	r5, r1, #11
	orr	r5, r5, r0, lsr #21
	orr	r5, r5, #0x80000000
	lsl	r4, r0, #11
	ubfx	r3, r3, #0, #20
	orr	r3, r3, #0x100000
	umull	r0, r1, r4, r2
	umull	r6, r8, r5, r2
	umaal	r1, r6, r4, r3
	umaal	r6, r8, r5, r3		@ r8:r6:r1:r0
	cmp	r0, #0
	it	ne
	orrne	r1, r1, #1
	cmp	r8, #0x100000
	bhs	1f
	lsls	r1, r1, #1
	adcs	r6, r6, r6
	adc	r8, r8, r8
	b	2f
1:	add	r7, r7, #0x100000
2:	@ Nearest, ties to even: on a tie only an odd last place rounds up.
	cmp	r1, #0x80000000
	it	eq
	lsleq	r1, r6, #31
	adds	r0, r6, r1, lsr #31
	adc	r1, r8, r7
	pop	{r4, r5, r6, r7, r8, pc}

.Lslow:
	pop	{r4, r5, r6, r7, r8, lr}
	b	__kv_fp_dmul
	.size __aeabi_dmul, . - __aeabi_dmul
	.size _dmul, . - _dmul

	.section .note.GNU-stack,"",%progbits
