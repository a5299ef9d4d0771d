@ 32-bit division by shift-and-subtract. The body is A32 code: conditional execution makes a
@ quotient bit three instructions (compare, shift the carry in, conditional subtract), and the
@ loop is unrolled and entered at the step the operands' leading zeros select.
@
@ __kv_udiv32(n, d) -> r0 = quotient, r1 = remainder, d != 0; uses r0-r3 and r12 only.
@ __kv_sdiv32(n, d) -> the same for signed operands, quotient truncated toward zero, remainder
@ with the dividend's sign; it is the second entry, taking magnitudes into the same body.
@ The EABI helpers check for a zero divisor first: signal 8, then quotient 0 and the dividend.
	.syntax unified
	.arm
	.text

#include "support/asm_entry.h"

	.p2align 2
arm_entry __aeabi_idiv, protected
arm_entry __aeabi_idivmod, protected
	cmp	r1, #0
	beq	.Ldiv0
	@ fall through
arm_entry __kv_sdiv32, hidden
	push	{r4, r5, lr}
	asr	r4, r0, #31		@ dividend sign: the remainder's
	asr	r5, r1, #31
	eor	r0, r0, r4
	sub	r0, r0, r4
	eor	r1, r1, r5
	sub	r1, r1, r5
	eor	r5, r5, r4		@ the quotient's sign
	bl	__kv_udiv32
	eor	r0, r0, r5
	sub	r0, r0, r5
	eor	r1, r1, r4
	sub	r1, r1, r4
	pop	{r4, r5, pc}
	.size __kv_sdiv32, . - __kv_sdiv32
	.size __aeabi_idivmod, . - __aeabi_idivmod
	.size __aeabi_idiv, . - __aeabi_idiv

arm_entry __aeabi_uidiv, protected
arm_entry __aeabi_uidivmod, protected
	cmp	r1, #0
	beq	.Ldiv0
	@ fall through
arm_entry __kv_udiv32, hidden
	cmp	r0, r1
	bls	.Lnot_above
	sub	r2, r1, #1
	tst	r1, r2
	beq	.Lpower_of_two
	clz	r3, r1
	clz	r12, r0
	sub	r3, r3, r12		@ quotient bits - 1
	rsb	r3, r3, #31
	add	r3, r3, r3, lsl #1
	mov	r12, #0
	add	pc, pc, r3, lsl #2	@ pc reads 8 ahead: skips the nop
	nop
	.irp i, 31,30,29,28,27,26,25,24,23,22,21,20,19,18,17,16,15,14,13,12,11,10,9,8,7,6,5,4,3,2,1,0
	cmp	r0, r1, lsl #\i
	adc	r12, r12, r12
	subhs	r0, r0, r1, lsl #\i
	.endr
	mov	r1, r0
	mov	r0, r12
	bx	lr
.Lnot_above:
	movlo	r1, r0
	movlo	r0, #0
	moveq	r0, #1
	moveq	r1, #0
	bx	lr
.Lpower_of_two:
	clz	r3, r1
	and	r1, r0, r2
	rsb	r3, r3, #31
	lsr	r0, r0, r3
	bx	lr
	.size __kv_udiv32, . - __kv_udiv32
	.size __aeabi_uidivmod, . - __aeabi_uidivmod
	.size __aeabi_uidiv, . - __aeabi_uidiv

.Ldiv0:
	push	{r0, lr}
	bl	__kv_raise_div0
	pop	{r1, lr}
	mov	r0, #0
	bx	lr

	.section .note.GNU-stack,"",%progbits
