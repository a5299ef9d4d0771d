@ A program of exactly 310 instructions (main alone, no library): a loop, an IT block whose
@ second instruction's condition fails, and a call into ARM state. Returns 9.
	.syntax unified
	.thumb
	.text
	.global main
	.type main, %function
	.thumb_func
main:
	movs	r0, #0			@ 1
1:	adds	r0, #1			@ 100 times these three
	cmp	r0, #100
	bne	1b
	cmp	r0, #100		@ 1
	ite	ne			@ 1
	movne	r0, #7			@ 1 (condition fails: still executed)
	moveq	r0, #0			@ 1
	push	{lr}			@ 1
	blx	arm_part		@ 1
	pop	{pc}			@ 1
	.size main, . - main

	.arm
	.type arm_part, %function
arm_part:
	add	r0, r0, #9		@ 1
	bx	lr			@ 1
	.size arm_part, . - arm_part
	.section .note.GNU-stack,"",%progbits
