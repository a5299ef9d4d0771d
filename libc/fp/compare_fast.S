@ Double and float relations returning 1 or 0, for operands whose exponent fields are neither 0
@ nor all ones.
@ Those then order as integers once a negative encoding has its magnitude bits inverted
@ (-m maps to -1 - m). Zeros, subnormals, infinities and NaNs go to the portable bodies.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	@ Exponent field 0 or 0x7ff in the high word \hi: to the portable body \slow.
	.macro ordinary hi, slow
	lsl	r12, \hi, #1
	add	r12, r12, #0x200000
	cmp	r12, #0x400000
	blo	\slow
	.endm

	.macro key lo, hi
	asr	r12, \hi, #31
	eor	\lo, \lo, r12
	eor	\hi, \hi, r12, lsr #1
	.endm

	@ 1 when x < y (signed keys), given as register pairs.
	.macro relation name, alias, xlo, xhi, ylo, yhi, cond, ncond
	.p2align 2
entry \name
entry \alias
	ordinary r1, 1f
	ordinary r3, 1f
	key	r0, r1
	key	r2, r3
	cmp	\xlo, \ylo
	sbcs	r12, \xhi, \yhi
	ite	\cond
	mov\cond	r0, #1
	mov\ncond	r0, #0
	bx	lr
1:	b	__kv_fp\alias
	.size \name, . - \name
	.size \alias, . - \alias
	.endm

	relation __aeabi_dcmplt, _dls, r0, r1, r2, r3, lt, ge
	relation __aeabi_dcmpgt, _dgr, r2, r3, r0, r1, lt, ge
	relation __aeabi_dcmpge, _dgeq, r0, r1, r2, r3, ge, lt
	relation __aeabi_dcmple, _dleq, r2, r3, r0, r1, ge, lt

	.p2align 2
entry __aeabi_dcmpeq
entry _deq
	ordinary r1, 1f
	ordinary r3, 1f
	cmp	r0, r2
	it	eq
	cmpeq	r1, r3
	ite	eq
	moveq	r0, #1
	movne	r0, #0
	bx	lr
1:	b	__kv_fp_deq
	.size __aeabi_dcmpeq, . - __aeabi_dcmpeq
	.size _deq, . - _deq

	@ Float relations, the same way: exponent field 0 or 0xff goes to the portable body.
	.macro ordinary_float x, slow
	lsl	r12, \x, #1
	add	r12, r12, #0x01000000
	cmp	r12, #0x02000000
	blo	\slow
	.endm

	.macro frelation name, alias, x, y, cond, ncond
	.p2align 2
entry \name
entry \alias
	ordinary_float r0, 1f
	ordinary_float r1, 1f
	asr	r12, r0, #31
	eor	r0, r0, r12, lsr #1
	asr	r12, r1, #31
	eor	r1, r1, r12, lsr #1
	cmp	\x, \y
	ite	\cond
	mov\cond	r0, #1
	mov\ncond	r0, #0
	bx	lr
1:	b	__kv_fp\alias
	.size \name, . - \name
	.size \alias, . - \alias
	.endm

	frelation __aeabi_fcmplt, _fls, r0, r1, lt, ge
	frelation __aeabi_fcmpgt, _fgr, r1, r0, lt, ge
	frelation __aeabi_fcmpge, _fgeq, r0, r1, ge, lt
	frelation __aeabi_fcmple, _fleq, r1, r0, ge, lt

	.p2align 2
entry __aeabi_fcmpeq
entry _feq
	ordinary_float r0, 1f
	ordinary_float r1, 1f
	cmp	r0, r1
	ite	eq
	moveq	r0, #1
	movne	r0, #0
	bx	lr
1:	b	__kv_fp_feq
	.size __aeabi_fcmpeq, . - __aeabi_fcmpeq
	.size _feq, . - _feq

	.section .note.GNU-stack,"",%progbits
