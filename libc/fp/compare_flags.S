@ Comparisons that answer in the condition flags, as a hardware compare leaves them:
@ less N; equal Z and C; greater C; unordered C and V. So LO/LS/HI/HS, LT/LE/GT/GE, EQ/NE and VS
@ all test what they say. Compiled code expects r0-r3 kept, so they are saved around the core,
@ which returns the flags word.
	.syntax unified
	.thumb
	.text

	.macro entry name
	.global \name
	.protected \name
	.type \name, %function
	.thumb_func
\name:
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
	push	{r0, r1, r2, r3, r4, lr}
	bl	__kv_fp_dcmp_flags
	msr	APSR_nzcvq, r0
	pop	{r0, r1, r2, r3, r4, pc}
	.size __aeabi_cdcmpeq, . - __aeabi_cdcmpeq

	.p2align 2
entry __aeabi_cdrcmple
entry _drcmple
	push	{r0, r1, r2, r3, r4, lr}
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
	push	{r0, r1, r2, r3, r4, lr}
	bl	__kv_fp_fcmp_flags
	msr	APSR_nzcvq, r0
	pop	{r0, r1, r2, r3, r4, pc}
	.size __aeabi_cfcmpeq, . - __aeabi_cfcmpeq

	.p2align 2
entry __aeabi_cfrcmple
entry _frcmple
	push	{r0, r1, r2, r3, r4, lr}
	mov	r0, r1
	ldr	r1, [sp]
	bl	__kv_fp_fcmp_flags
	msr	APSR_nzcvq, r0
	pop	{r0, r1, r2, r3, r4, pc}
	.size __aeabi_cfrcmple, . - __aeabi_cfrcmple

	.section .note.GNU-stack,"",%progbits
