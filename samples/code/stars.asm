; Stars that come and go on a teletext screen, until a key is pressed.
; Assemble with: 64tass --nostart -o STARS stars.asm

oswrch  = $ffee
osbyte  = $fff4
seed    = $70                   ; two bytes, never both zero

        * = $2800

start   lda #$a5
        sta seed
        sta seed+1
        lda #12                 ; a clear screen
        jsr oswrch
        ldx #0
cursor  lda nocursor,x
        jsr oswrch
        inx
        cpx #nocursor_end-nocursor
        bne cursor

star    lda #31                 ; VDU 31,x,y: where the next one stands
        jsr oswrch
        ldx #38
        jsr below
        jsr oswrch
        ldx #24
        jsr below
        jsr oswrch
        ldx #7
        jsr below
        clc
        adc #129                ; its colour, red to white
        jsr oswrch
        ldx #shapes_end-shapes
        jsr below
        tax
        lda shapes,x
        jsr oswrch
        lda #19                 ; one star a frame
        jsr osbyte
        lda #129                ; a key, without waiting for it
        ldx #0
        ldy #0
        jsr osbyte
        bcs star
        lda #12
        jmp oswrch

; A random number from 0 to X-1, in A.
below   stx limit+1
        jsr random
limit   cmp #0                  ; the operand is the limit
        bcc done
        sbc limit+1
        jmp limit
done    rts

; Eight steps of a 16-bit shift register; the low byte in A.
random  ldy #8
step    lsr seed+1
        ror seed
        bcc next
        lda seed+1
        eor #$b4
        sta seed+1
next    dey
        bne step
        lda seed
        rts

nocursor .byte 23,1,0,0,0,0,0,0,0,0
nocursor_end
shapes  .text ".+*o'  "
shapes_end
