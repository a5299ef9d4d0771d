@ Copy with overlap. r0 = destination, r1 = source, r2 = count. When the destination lies
@ below the source, or past the source's end, the forward copy is safe (it reads every group
@ before storing it); otherwise the copy runs backward from the ends, destination end aligned
@ first. The ISO memmove (library-internal) keeps the destination for its result.
	.syntax unified
	.thumb
	.text

#include "support/asm_entry.h"

	.p2align 2
entry memmove, hidden
entry __kv_mem_move, hidden
	push	{r0, lr}
	bl	__rt_memmove
	pop	{r0, pc}
	.size memmove, . - memmove
	.size __kv_mem_move, . - __kv_mem_move

	.p2align 2
entry __aeabi_memmove, protected
entry __rt_memmove, protected
	subs	r3, r0, r1
	beq	.Lreturn
	cmp	r3, r2
	bhs	__rt_memcpy		@ no harmful overlap: also taken for dst < src
	add	r0, r0, r2		@ from here on r0 and r1 are end pointers
	add	r1, r1, r2
	cmp	r2, #8
	blo	.Lback_bytes
	@ Align the destination end with a byte and/or a halfword.
	ands	r3, r0, #3
	beq	1f
	sub	r2, r2, r3
	lsls	r3, r3, #31		@ N = one byte, C = two bytes
	itt	mi
	ldrbmi	r12, [r1, #-1]!
	strbmi	r12, [r0, #-1]!
	itt	cs
	ldrhcs	r12, [r1, #-2]!
	strhcs	r12, [r0, #-2]!
1:	tst	r1, #3
	beq	.Lback_aligned
	@ Destination end aligned, source end not, at least 5 bytes.
	subs	r2, r2, #32
	blo	3f
	push	{r4-r10}
2:	ldr	r10, [r1, #-4]!
	ldr	r9, [r1, #-4]!
	ldr	r8, [r1, #-4]!
	ldr	r7, [r1, #-4]!
	ldr	r6, [r1, #-4]!
	ldr	r5, [r1, #-4]!
	ldr	r4, [r1, #-4]!
	ldr	r3, [r1, #-4]!
	stmdb	r0!, {r3-r10}
	subs	r2, r2, #32
	bhs	2b
	pop	{r4-r10}
3:	lsls	r3, r2, #28		@ C = 16, N = 8
	bcc	4f
	ldr	r12, [r1, #-4]!
	ldr	r3, [r1, #-4]!
	stmdb	r0!, {r3, r12}
	ldr	r12, [r1, #-4]!
	ldr	r3, [r1, #-4]!
	stmdb	r0!, {r3, r12}
4:	bpl	5f
	ldr	r12, [r1, #-4]!
	ldr	r3, [r1, #-4]!
	stmdb	r0!, {r3, r12}
5:	lsls	r3, r2, #30		@ C = 4, Z = nothing below 4 left
	itt	cs
	ldrcs	r3, [r1, #-4]!
	strcs	r3, [r0, #-4]!
	it	eq
	bxeq	lr
	b	__memmove_lastfew

.Lback_bytes:
	ldrb	r3, [r1, #-1]!
	subs	r2, r2, #1
	strb	r3, [r0, #-1]!
	bne	.Lback_bytes
.Lreturn:
	bx	lr
	.size __rt_memmove, . - __rt_memmove
	.size __aeabi_memmove, . - __aeabi_memmove

	.p2align 2
entry __aeabi_memmove4, protected
entry __aeabi_memmove8, protected
entry __rt_memmove_w, protected
entry __memmove_aligned, protected
	subs	r3, r0, r1
	beq	.Lreturn
	cmp	r3, r2
	bhs	__rt_memcpy_w
	add	r0, r0, r2
	add	r1, r1, r2
.Lback_aligned:
	@ Both end pointers aligned.
	subs	r2, r2, #32
	blo	3f
	push	{r4-r10}
	subs	r2, r2, #96		@ count - 128
	blo	2f
1:	ldmdb	r1!, {r3-r10}
	stmdb	r0!, {r3-r10}
	ldmdb	r1!, {r3-r10}
	stmdb	r0!, {r3-r10}
	ldmdb	r1!, {r3-r10}
	stmdb	r0!, {r3-r10}
	ldmdb	r1!, {r3-r10}
	stmdb	r0!, {r3-r10}
	subs	r2, r2, #128
	bhs	1b
2:	lsls	r3, r2, #26		@ C = 64, N = 32
	bcc	21f
	ldmdb	r1!, {r3-r10}
	stmdb	r0!, {r3-r10}
	ldmdb	r1!, {r3-r10}
	stmdb	r0!, {r3-r10}
21:	bpl	22f
	ldmdb	r1!, {r3-r10}
	stmdb	r0!, {r3-r10}
22:	pop	{r4-r10}
3:	lsls	r3, r2, #28		@ C = 16, N = 8
	bcc	4f
	ldmdb	r1!, {r3, r12}
	stmdb	r0!, {r3, r12}
	ldmdb	r1!, {r3, r12}
	stmdb	r0!, {r3, r12}
4:	bpl	5f
	ldmdb	r1!, {r3, r12}
	stmdb	r0!, {r3, r12}
5:	lsls	r3, r2, #30		@ C = 4, Z = nothing below 4 left
	itt	cs
	ldrcs	r3, [r1, #-4]!
	strcs	r3, [r0, #-4]!
	it	eq
	bxeq	lr
	@ fall through
entry __memmove_lastfew_aligned, protected
	@ Copies the count & 3 bytes below the end pointers r0 and r1, which are halfword aligned.
	lsls	r2, r2, #31		@ C = bit 1, N = bit 0
	itt	cs
	ldrhcs	r3, [r1, #-2]!
	strhcs	r3, [r0, #-2]!
	itt	mi
	ldrbmi	r3, [r1, #-1]
	strbmi	r3, [r0, #-1]
	bx	lr
	.size __memmove_lastfew_aligned, . - __memmove_lastfew_aligned
	.size __memmove_aligned, . - __memmove_aligned
	.size __rt_memmove_w, . - __rt_memmove_w
	.size __aeabi_memmove4, . - __aeabi_memmove4
	.size __aeabi_memmove8, . - __aeabi_memmove8

entry __memmove_lastfew, protected
	@ Copies the count & 3 bytes below the end pointers r0 and r1, at any alignment.
	lsls	r2, r2, #31		@ C = bit 1, N = bit 0
	bcc	1f
	ldrb	r3, [r1, #-1]!
	ldrb	r12, [r1, #-1]!
	strb	r3, [r0, #-1]!
	strb	r12, [r0, #-1]!
1:	itt	mi
	ldrbmi	r3, [r1, #-1]
	strbmi	r3, [r0, #-1]
	bx	lr
	.size __memmove_lastfew, . - __memmove_lastfew

	.section .note.GNU-stack,"",%progbits
