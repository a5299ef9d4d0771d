@ uint32_t call_with_marked_registers(void (*fn)(void), uint32_t after[4])
@ Loads r4..r7 with marks, calls fn with r0..r3 = 1..4, stores r4..r7 as they are afterwards, and
@ returns fn's r0.
	.syntax unified
	.thumb
	.text
	.global call_with_marked_registers
	.type call_with_marked_registers, %function
	.thumb_func
call_with_marked_registers:
	push	{r4-r7, lr}
	push	{r1}
	mov	r12, r0
	ldr	r4, =0x44444444
	ldr	r5, =0x55555555
	ldr	r6, =0x66666666
	ldr	r7, =0x77777777
	movs	r0, #1
	movs	r1, #2
	movs	r2, #3
	movs	r3, #4
	blx	r12
	pop	{r1}
	str	r4, [r1]
	str	r5, [r1, #4]
	str	r6, [r1, #8]
	str	r7, [r1, #12]
	pop	{r4-r7, pc}
	.ltorg
	.size call_with_marked_registers, . - call_with_marked_registers
	.section .note.GNU-stack,"",%progbits
