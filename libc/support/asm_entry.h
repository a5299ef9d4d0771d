@ Function entries of the assembly sources: "entry name" for a Thumb function (protected unless
@ a visibility is given, e.g. "entry memcpy, hidden"), "arm_entry" for one in ARM state.
	.macro entry name, vis=protected
	.global \name
	.\vis \name
	.type \name, %function
	.thumb_func
\name:
	.endm

	.macro arm_entry name, vis=protected
	.global \name
	.\vis \name
	.type \name, %function
\name:
	.endm
