@ uint32_t call_flags(void (*fn)(void), uint32_t a0, uint32_t a1, uint32_t a2, uint32_t a3)
@ Calls fn with r0..r3 = a0..a3 and all four flags set beforehand; returns the flags fn left
@ (N Z C V in bits 31..28), with bit 0 set when fn kept r0-r11.
	.syntax unified
	.thumb
	.text
	.global call_flags
	.type call_flags, %function
	.thumb_func
call_flags:
	push	{r4-r11, lr}
	sub	sp, sp, #4
	mov	r12, r0
	mov	r0, r1
	mov	r1, r2
	mov	r2, r3
	ldr	r3, [sp, #40]
	push	{r0-r3}
	ldr	r4, =0x44444444
	ldr	r5, =0x55555555
	ldr	r6, =0x66666666
	ldr	r7, =0x77777777
	ldr	r8, =0x88888888
	ldr	r9, =0x99999999
	ldr	r10, =0xaaaaaaaa
	ldr	r11, =0xbbbbbbbb
	mov	lr, #0xf0000000
	msr	APSR_nzcvq, lr
	blx	r12
	mrs	r12, APSR
	and	r12, r12, #0xf0000000
	orr	r12, r12, #1
	ldr	lr, [sp, #0]
	cmp	r0, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, [sp, #4]
	cmp	r1, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, [sp, #8]
	cmp	r2, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, [sp, #12]
	cmp	r3, lr
	it	ne
	bicne	r12, r12, #1
	add	sp, sp, #16
	ldr	lr, =0x44444444
	cmp	r4, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, =0x55555555
	cmp	r5, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, =0x66666666
	cmp	r6, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, =0x77777777
	cmp	r7, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, =0x88888888
	cmp	r8, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, =0x99999999
	cmp	r9, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, =0xaaaaaaaa
	cmp	r10, lr
	it	ne
	bicne	r12, r12, #1
	ldr	lr, =0xbbbbbbbb
	cmp	r11, lr
	it	ne
	bicne	r12, r12, #1
	mov	r0, r12
	add	sp, sp, #4
	pop	{r4-r11, pc}
	.ltorg
	.size call_flags, . - call_flags
	.section .note.GNU-stack,"",%progbits
