@ 64-bit division: n in r0:r1, d in r2:r3 -> quotient r0:r1, remainder r2:r3 (low words first).
@ Three shapes, each kept short:
@   d < 2^32, n < 2^32: the 32-bit body;
@   d < 2^32, n wider: the high word by the 32-bit body, then the low word one quotient bit per
@     four A32 instructions, the remainder shifting left through the carry;
@   d >= 2^32: the quotient fits a word; d is lined up under n and steps down, seven
@     instructions per quotient bit, entered at the step the leading zeros select.
@ A zero divisor sends signal 8, then gives quotient 0 and the dividend as remainder.
	.syntax unified
	.arm
	.text

#include "support/asm_entry.h"

	.p2align 2
arm_entry __aeabi_ldivmod, protected
arm_entry _ll_sdiv, protected
	push	{r4, r5, r6, lr}
	asr	r4, r1, #31		@ dividend sign: the remainder's
	asr	r5, r3, #31
	eor	r0, r0, r4
	eor	r1, r1, r4
	subs	r0, r0, r4
	sbc	r1, r1, r4
	eor	r2, r2, r5
	eor	r3, r3, r5
	subs	r2, r2, r5
	sbc	r3, r3, r5
	eor	r5, r5, r4		@ the quotient's sign
	bl	__aeabi_uldivmod
	eor	r0, r0, r5
	eor	r1, r1, r5
	subs	r0, r0, r5
	sbc	r1, r1, r5
	eor	r2, r2, r4
	eor	r3, r3, r4
	subs	r2, r2, r4
	sbc	r3, r3, r4
	pop	{r4, r5, r6, pc}
	.size _ll_sdiv, . - _ll_sdiv
	.size __aeabi_ldivmod, . - __aeabi_ldivmod

	.p2align 2
arm_entry __aeabi_uldivmod, protected
arm_entry _ll_udiv, protected
arm_entry _ll_udiv_donemoving, protected
	cmp	r3, #0
	bne	.Lwide_divisor
	cmp	r1, #0
	bne	.Lwide_dividend
	cmp	r2, #0
	beq	.Ldiv0
	@ Both fit a word.
	push	{r4, lr}
	mov	r1, r2
	bl	__kv_udiv32
	mov	r2, r1
	mov	r1, #0
	mov	r3, #0
	pop	{r4, pc}

.Lwide_dividend:
	cmp	r2, #0
	beq	.Ldiv0
	push	{r4, r5, r6, lr}
	mov	r4, r0
	mov	r5, r2
	mov	r6, #0			@ high quotient word
	cmp	r1, r2
	blo	1f
	mov	r0, r1
	mov	r1, r2
	bl	__kv_udiv32
	mov	r6, r0
	@ r1 = what is left of the high word, now below the divisor.
1:	mov	r0, r4
	mov	r2, r5
	@ r1:r0 shifts left one bit per step; the carry out of r1 or the compare decides the
	@ quotient bit, which the next step shifts into r0 from below.
	adds	r0, r0, r0
	.rept 32
	adcs	r1, r1, r1
	cmpcc	r1, r2
	subcs	r1, r1, r2
	adcs	r0, r0, r0
	.endr
	mov	r2, r1
	mov	r1, r6
	mov	r3, #0
	pop	{r4, r5, r6, pc}

.Lwide_divisor:
	cmp	r1, r3
	cmpeq	r0, r2
	blo	.Lbelow
	push	{r4, r5, r6, lr}
	clz	r12, r3
	clz	r4, r1
	sub	r12, r12, r4		@ quotient bits - 1 (0..31)
	@ Line the divisor up: r3:r2 <<= r12.
	rsb	r4, r12, #32
	lsl	r3, r3, r12
	orr	r3, r3, r2, lsr r4
	lsl	r2, r2, r12
	mov	r5, #0			@ quotient
	rsb	r12, r12, #31
	rsb	r12, r12, r12, lsl #3	@ 7 instructions a step
	add	pc, pc, r12, lsl #2
	nop
	.rept 32
	subs	r4, r0, r2
	sbcs	r6, r1, r3
	movcs	r0, r4
	movcs	r1, r6
	adc	r5, r5, r5
	lsrs	r3, r3, #1
	rrx	r2, r2
	.endr
	mov	r2, r0
	mov	r3, r1
	mov	r0, r5
	mov	r1, #0
	pop	{r4, r5, r6, pc}

.Lbelow:
	mov	r2, r0
	mov	r3, r1
	mov	r0, #0
	mov	r1, #0
	bx	lr

.Ldiv0:
	push	{r0, r1, r2, lr}
	bl	__kv_raise_div0
	pop	{r2, r3, r12, lr}
	mov	r0, #0
	mov	r1, #0
	bx	lr
	.size _ll_udiv_donemoving, . - _ll_udiv_donemoving
	.size _ll_udiv, . - _ll_udiv
	.size __aeabi_uldivmod, . - __aeabi_uldivmod

	.section .note.GNU-stack,"",%progbits
