@ uint32_t call_regs(void (*fn)(void), uint32_t out[4], uint32_t a0, uint32_t a1, uint32_t a2,
@                    uint32_t a3)
@ Calls fn with r0..r3 = a0..a3 and stores r0..r3 as fn leaves them into out, so that helpers
@ returning results in several registers can be checked register by register. Returns 1 if fn
@ preserved r6..r11 (loaded with marks before the call), else 0.
	.syntax unified
	.thumb
	.text
	.global call_regs
	.type call_regs, %function
	.thumb_func
call_regs:
	push	{r4-r11, lr}
	sub	sp, sp, #4
	mov	r4, r0
	mov	r5, r1
	mov	r0, r2
	mov	r1, r3
	ldr	r2, [sp, #40]
	ldr	r3, [sp, #44]
	ldr	r6, =0x66666666
	ldr	r7, =0x77777777
	ldr	r8, =0x88888888
	ldr	r9, =0x99999999
	ldr	r10, =0xaaaaaaaa
	ldr	r11, =0xbbbbbbbb
	blx	r4
	stm	r5, {r0-r3}
	movs	r0, #1
	ldr	r1, =0x66666666
	cmp	r6, r1
	it	ne
	movne	r0, #0
	ldr	r1, =0x77777777
	cmp	r7, r1
	it	ne
	movne	r0, #0
	ldr	r1, =0x88888888
	cmp	r8, r1
	it	ne
	movne	r0, #0
	ldr	r1, =0x99999999
	cmp	r9, r1
	it	ne
	movne	r0, #0
	ldr	r1, =0xaaaaaaaa
	cmp	r10, r1
	it	ne
	movne	r0, #0
	ldr	r1, =0xbbbbbbbb
	cmp	r11, r1
	it	ne
	movne	r0, #0
	add	sp, sp, #4
	pop	{r4-r11, pc}
	.ltorg
	.size call_regs, . - call_regs
	.section .note.GNU-stack,"",%progbits
