@ Comparisons that answer in the condition flags, as a hardware compare leaves them:
@ less N; equal Z and C; greater C; unordered C and V. So LO/LS/HI/HS, LT/LE/GT/GE, EQ/NE and VS
@ all test what they say. Compiled code expects r0-r3 kept. Operands whose exponent fields are
@ neither 0 nor all ones are compared here with r12 alone; the rest go to the portable core,
@ which returns the flags word, with r0-r3 saved around it.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	.macro ordinary_double hi, slow
	lsl	r12, \hi, #1
	add	r12, r12, #0x200000
	cmp	r12, #0x400000
	blo	\slow
	.endm

	.macro ordinary_float x, slow
	lsl	r12, \x, #1
	add	r12, r12, #0x01000000
	cmp	r12, #0x02000000
	blo	\slow
	.endm

	@ Flags from an unsigned comparison of two magnitudes (reversed for negative operands):
	@ equal ones are already what they should be, less and greater get their own from a
	@ comparison of r12 = 1 with 2 or 0.
	.macro settle
	it	lo
	cmplo	r12, #2
	it	hi
	cmphi	r12, #0
	bx	lr
	.endm

	@ Operands of opposite signs: the negative one is the less.
	.macro by_sign x
	cmp	\x, #0
	ite	mi
	cmpmi	r12, #2
	cmppl	r12, #0
	bx	lr
	.endm

	@ x against y, both ordinary doubles.
	.macro dflags xlo, xhi, ylo, yhi
	mov	r12, #1
	teq	\xhi, \yhi
	bmi	3f
	cmp	\xhi, #0
	bmi	2f
	cmp	\xhi, \yhi
	it	eq
	cmpeq	\xlo, \ylo
	settle
2:	cmp	\yhi, \xhi
	it	eq
	cmpeq	\ylo, \xlo
	settle
3:	by_sign	\xhi
	.endm

	.macro fflags x, y
	mov	r12, #1
	teq	\x, \y
	bmi	3f
	cmp	\x, #0
	bmi	2f
	cmp	\x, \y
	settle
2:	cmp	\y, \x
	settle
3:	by_sign	\x
	.endm

	@ Double operands in r0:r1 and r2:r3.
	.p2align 2
entry __aeabi_cdcmpeq
entry __aeabi_cdcmple
entry __aeabi_cdcmpge
entry _dcmpeq
entry _dcmple
entry _dcmpge
entry __dcmp4
entry _dcmp4
entry __ARM_dcmp4
entry __dcmp4e
entry _dcmp4e
entry __ARM_dcmp4e
	ordinary_double r1, 1f
	ordinary_double r3, 1f
	dflags	r0, r1, r2, r3
1:	push	{r0, r1, r2, r3, r4, lr}
	bl	__kv_fp_dcmp_flags
	msr	APSR_nzcvq, r0
	pop	{r0, r1, r2, r3, r4, pc}
	.size __aeabi_cdcmpeq, . - __aeabi_cdcmpeq

	.p2align 2
entry __aeabi_cdrcmple
entry _drcmple
	ordinary_double r1, 1f
	ordinary_double r3, 1f
	dflags	r2, r3, r0, r1
1:	push	{r0, r1, r2, r3, r4, lr}
	mov	r0, r2
	mov	r1, r3
	ldrd	r2, r3, [sp]
	bl	__kv_fp_dcmp_flags
	msr	APSR_nzcvq, r0
	pop	{r0, r1, r2, r3, r4, pc}
	.size __aeabi_cdrcmple, . - __aeabi_cdrcmple

	@ Float operands in r0 and r1.
	.p2align 2
entry __aeabi_cfcmpeq
entry __aeabi_cfcmple
entry _fcmpeq
entry _fcmple
entry _fcmpge
entry __fcmp4
entry _fcmp4
entry __ARM_fcmp4
entry __fcmp4e
entry _fcmp4e
entry __ARM_fcmp4e
	ordinary_float r0, 1f
	ordinary_float r1, 1f
	fflags	r0, r1
1:	push	{r0, r1, r2, r3, r4, lr}
	bl	__kv_fp_fcmp_flags
	msr	APSR_nzcvq, r0
	pop	{r0, r1, r2, r3, r4, pc}
	.size __aeabi_cfcmpeq, . - __aeabi_cfcmpeq

	.p2align 2
entry __aeabi_cfrcmple
entry _frcmple
	ordinary_float r0, 1f
	ordinary_float r1, 1f
	fflags	r1, r0
1:	push	{r0, r1, r2, r3, r4, lr}
	mov	r0, r1
	ldr	r1, [sp]
	bl	__kv_fp_fcmp_flags
	msr	APSR_nzcvq, r0
	pop	{r0, r1, r2, r3, r4, pc}
	.size __aeabi_cfrcmple, . - __aeabi_cfrcmple

	.section .note.GNU-stack,"",%progbits
