@ Forward copy. r0 = destination, r1 = source, r2 = count; the EABI entries return nothing,
@ so r0..r3 and r12 are free. The bulk moves 32 bytes per LDM/STM pair, four pairs per loop
@ turn; a source that stays misaligned once the destination is aligned is read with unaligned
@ LDRs (allowed on ARMv7 for single words) and stored with STM.
@ The ISO memcpy (library-internal) is a shell that keeps the destination for its result.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	@ Copies one word per register from the unaligned source r1 to the aligned destination r0.
	.macro uwords regs:vararg
	.irp r, \regs
	ldr	\r, [r1], #4
	.endr
	stmia	r0!, {\regs}
	.endm

	.p2align 2
entry memcpy, hidden
entry __kv_mem_copy, hidden
	push	{r0, lr}
	bl	__rt_memcpy
	pop	{r0, pc}
	.size memcpy, . - memcpy
	.size __kv_mem_copy, . - __kv_mem_copy

	.p2align 2
entry __aeabi_memcpy, protected
entry __rt_memcpy, protected
	orr	r3, r0, r1
	lsls	r3, r3, #30
	bne	.Lmisaligned
entry __aeabi_memcpy4, protected
entry __aeabi_memcpy8, protected
entry __rt_memcpy_w, protected
	subs	r2, r2, #16
	blo	.Lw_below16
	cmp	r2, #16
	bhs	.Lw_big
	ldmia	r1!, {r3, r12}
	stmia	r0!, {r3, r12}
	ldmia	r1!, {r3, r12}
	stmia	r0!, {r3, r12}
.Lw_below16:
	@ r2 = count - 16 or less; its low 4 bits are what is left.
	lsls	r3, r2, #28		@ N = 8, Z = nothing left
	it	eq
	bxeq	lr
	bpl	.Lw_tail7
	ldmia	r1!, {r3, r12}
	stmia	r0!, {r3, r12}
.Lw_tail7:
	lsls	r3, r2, #30		@ C = 4, Z = nothing below 4 left
	itt	cs
	ldrcs	r3, [r1], #4
	strcs	r3, [r0], #4
	it	eq
	bxeq	lr
	@ fall through
entry _memcpy_lastbytes_aligned, protected
	@ Copies count & 3 bytes: a halfword when bit 1 is set, then a byte when bit 0 is.
	lsls	r2, r2, #31		@ C = bit 1, N = bit 0
	itt	cs
	ldrhcs	r3, [r1], #2
	strhcs	r3, [r0], #2
	itt	mi
	ldrbmi	r3, [r1]
	strbmi	r3, [r0]
	bx	lr
	.size _memcpy_lastbytes_aligned, . - _memcpy_lastbytes_aligned

.Lw_big:
	@ r2 = count - 16 >= 16.
	push	{r4-r10}
	subs	r2, r2, #112		@ count - 128
	blo	2f
1:	ldmia	r1!, {r3-r10}
	stmia	r0!, {r3-r10}
	ldmia	r1!, {r3-r10}
	stmia	r0!, {r3-r10}
	ldmia	r1!, {r3-r10}
	stmia	r0!, {r3-r10}
	ldmia	r1!, {r3-r10}
	stmia	r0!, {r3-r10}
	subs	r2, r2, #128
	bhs	1b
2:	@ The low 7 bits of r2 are what is left.
	lsls	r3, r2, #26		@ C = 64, N = 32
	bcc	3f
	ldmia	r1!, {r3-r10}
	stmia	r0!, {r3-r10}
	ldmia	r1!, {r3-r10}
	stmia	r0!, {r3-r10}
3:	bpl	4f
	ldmia	r1!, {r3-r10}
	stmia	r0!, {r3-r10}
4:	lsls	r3, r2, #28		@ C = 16, N = 8
	itt	cs
	ldmiacs	r1!, {r3-r6}
	stmiacs	r0!, {r3-r6}
	itt	mi
	ldmiami	r1!, {r3, r4}
	stmiami	r0!, {r3, r4}
	pop	{r4-r10}
	b	.Lw_tail7
	.size __rt_memcpy_w, . - __rt_memcpy_w
	.size __aeabi_memcpy4, . - __aeabi_memcpy4
	.size __aeabi_memcpy8, . - __aeabi_memcpy8

.Lmisaligned:
	cmp	r2, #8
	blo	.Lbytes
	ands	r3, r0, #3
	beq	.Lsrc_misaligned
	@ Align the destination with a byte and/or a halfword.
	rsb	r3, r3, #4
	sub	r2, r2, r3
	lsls	r3, r3, #31		@ N = one byte, C = two bytes
	itt	mi
	ldrbmi	r12, [r1], #1
	strbmi	r12, [r0], #1
	itt	cs
	ldrhcs	r12, [r1], #2
	strhcs	r12, [r0], #2
	tst	r1, #3
	beq	__rt_memcpy_w
.Lsrc_misaligned:
	@ Destination aligned, source not, at least 5 bytes. Each word takes one unaligned LDR
	@ (merging two aligned words costs two instructions a word); STMs of up to eleven
	@ registers store them.
	subs	r2, r2, #64
	blo	2f
	push	{r4-r11, lr}
	subs	r2, r2, #192		@ count - 256
	blo	.Lu_below256
.Lu_loop:
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12, lr
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12, lr
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12, lr
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12, lr
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12, lr
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11
	subs	r2, r2, #256
	bhs	.Lu_loop
.Lu_below256:
	@ The low 8 bits of r2 are what is left.
	lsls	r3, r2, #25		@ C = 128, N = 64
	bcc	1f
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12, lr
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12, lr
	uwords	r3, r4, r5, r6, r7, r8, r9, r10, r11, r12
1:	bpl	1f
	uwords	r3, r4, r5, r6, r7, r8, r9, r10
	uwords	r3, r4, r5, r6, r7, r8, r9, r10
1:	lsls	r3, r2, #27		@ C = 32, N = 16
	bcc	1f
	uwords	r3, r4, r5, r6, r7, r8, r9, r10
1:	bpl	1f
	uwords	r3, r4, r5, r6
1:	pop	{r4-r11, lr}
	b	4f
2:	@ The low 6 bits of r2 are what is left.
	lsls	r3, r2, #27		@ C = 32, N = 16
	bcc	3f
	push	{r4-r7}
	ldr	r3, [r1], #4
	ldr	r4, [r1], #4
	ldr	r5, [r1], #4
	ldr	r6, [r1], #4
	stmia	r0!, {r3-r6}
	ldr	r3, [r1], #4
	ldr	r4, [r1], #4
	ldr	r5, [r1], #4
	ldr	r6, [r1], #4
	stmia	r0!, {r3-r6}
	pop	{r4-r7}
3:	bpl	4f
	ldr	r3, [r1], #4
	ldr	r12, [r1], #4
	stmia	r0!, {r3, r12}
	ldr	r3, [r1], #4
	ldr	r12, [r1], #4
	stmia	r0!, {r3, r12}
4:	lsls	r3, r2, #29		@ C = 8, N = 4, Z = nothing below 8 left
	bcc	5f
	ldr	r3, [r1], #4
	ldr	r12, [r1], #4
	stmia	r0!, {r3, r12}
5:	itt	mi
	ldrmi	r3, [r1], #4
	strmi	r3, [r0], #4
	it	eq
	bxeq	lr
	b	_memcpy_lastbytes

.Lbytes:
	cbz	r2, 2f
1:	ldrb	r3, [r1], #1
	subs	r2, r2, #1
	strb	r3, [r0], #1
	bne	1b
2:	bx	lr
	.size __rt_memcpy, . - __rt_memcpy
	.size __aeabi_memcpy, . - __aeabi_memcpy

entry _memcpy_lastbytes, protected
	@ Copies count & 3 bytes at any alignment: two when bit 1 is set, then one when bit 0 is.
	lsls	r2, r2, #31		@ C = bit 1, N = bit 0
	bcc	1f
	ldrb	r3, [r1], #1
	ldrb	r12, [r1], #1
	strb	r3, [r0], #1
	strb	r12, [r0], #1
1:	itt	mi
	ldrbmi	r3, [r1]
	strbmi	r3, [r0]
	bx	lr
	.size _memcpy_lastbytes, . - _memcpy_lastbytes

	.section .note.GNU-stack,"",%progbits
