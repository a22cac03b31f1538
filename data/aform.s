; AFORM, a disc formatter for the BBC Micro with a 1770 disc controller and the BBC Master.
;
; It comes over the serial line as raw bytes, stored from &2FB3 on by a six-line BASIC loader that
; knows its length and the sum of its bytes, and is called at its first byte. It asks for a drive and
; a size, formats, verifies, writes an empty ADFS disc, and returns to BASIC.
;
; Assembler: 64tass. The loader wants exactly kSize bytes whose sum is 206 modulo 256; kBalance, the
; last byte, is worked out by the build (BuildAform.cmake).

kLoad = $2fb3
kSize = 5738
        .weak
kBalance = 0                    ; unless the build gives it
        .endweak

; ---- the operating system ----------------------------------------------------------------------
osrdch = $ffe0
osasci = $ffe3
oswrch = $ffee
osnewl = $ffe7
osbyte = $fff4
escape_flag = $ff               ; bit 7: Escape was pressed
nmi_page = $0d00                ; the NMI handler's place, ours after the claim

; ---- zero page: the user's own bytes -----------------------------------------------------------
fdc = $70                       ; address of the 1770's registers: status/command, track, sector, data
control = $72                   ; address of the drive control latch
base = $74                      ; control: not in reset, double density, the drive
side_bit = $75                  ; control: the second side
side = $76                      ; 0 or 1
track = $77
tracks = $78                    ; tracks a side
sides = $79
sector = $7a
text = $7b                      ; inline text
pointer = $7d
patience = $7f                  ; three bytes: how long a command may still take
tries = $82
old_nmi = $83                   ; who had the NMI before us
fault = $84                     ; status bits of what went wrong
dest = $85                      ; where the next filler byte goes
count = $87
digit = $88
drive = $89
last_status = $8a

; ---- memory behind the code --------------------------------------------------------------------
track_image = $4700             ; what is written for one track, index to index
kTrackImageEnd = $6200
sector_data = $6200             ; sixteen sectors that were read, or the first seven to write

; ---- the 1770 ----------------------------------------------------------------------------------
kRestore = $03                  ; 30 ms a step: old drives want it, and it costs two seconds a disc
kStepIn = $53                   ; one step inwards, the track register follows
kForceEnd = $d0
kReadSector = $88               ; the motor is running: no spin-up
kWriteSector = $ac              ; 30 ms for the head to settle
kWriteTrack = $fc
kBusy = $01
kDataRequest = $02
kLostData = $04
kTrackZero = $04                ; after a restore
kCrcError = $08
kNotFound = $10
kProtected = $40
kNoAnswer = $80                 ; our own: the command never ended
kDiffers = $20                  ; our own: read back something else

kSectors = 16                   ; to a track
kFiller = 0                     ; what fresh sectors hold

        * = kLoad

; ------------------------------------------------------------------------------------------------
start   cld
        jsr find_controller
        bcc +
        rts
+       lda #22                 ; MODE 7 without a word to BASIC: shadow memory stays as it was,
        jsr oswrch              ; and the screen is nowhere near our buffers
        lda #135
        jsr oswrch
        jsr print
        .text "ADFS disc formatter", 13, "-------------------", 13, 0
another jsr ask
        bcs leave
        jsr claim
        jsr format_disc
        php
        jsr release
        plp
        bcs again
        jsr print
        .text 13, "The disc is ready; *ADFS takes you to it.", 13, 0
again   jsr print
        .text 13, "Format another disc (Y/N)? ", 0
        jsr yes
        bcc another
leave   rts

; ------------------------------------------------------------------------------------------------
; Which machine, and is there a 1770? C set, with a message, if we can do nothing here.
find_controller
        lda #0
        ldx #1
        jsr osbyte              ; X: 1 and 2 Model B and B+, from 3 on a Master
        cpx #1
        bcc unknown
        cpx #3
        bcs master
        lda #$84
        sta fdc
        lda #$80
        sta control
        lda #$20                ; not in reset; bit 3 clear is double density
        sta base
        lda #$04
        bne check
master  lda #$28
        sta fdc
        lda #$24
        sta control
        lda #$04                ; not in reset; bit 5 clear is double density
        sta base
        lda #$10
check   sta side_bit
        lda #$fe
        sta fdc+1
        sta control+1
        lda #$5a                ; a track register holds what is put there
        jsr holds
        bcs unknown
        lda #$a5
        jsr holds
        bcs unknown
        rts
unknown jsr print
        .text 13, "No 1770 disc controller here", 13, 0
        sec
        rts

holds   ldy #1
        sta (fdc),y
        pha
        ldx #20
-       dex
        bne -
        pla
        cmp (fdc),y
        beq +
        sec
        rts
+       clc
        rts

; ------------------------------------------------------------------------------------------------
; Drive, size and the last warning. C set if the user wants out.
ask     jsr print
        .text 13, "Drive (0/1)? ", 0
        jsr key
        bcs ask_out
        sta drive
        cmp #"0"
        beq ask_size
        cmp #"1"
        beq ask_size
ask_out jsr print
        .text 13, "Nothing was written.", 13, 0
        sec
        rts
ask_size
        jsr echo
        jsr print
        .text 13, "S  160K  40 tracks, one side"
        .text 13, "M  320K  80 tracks, one side"
        .text 13, "L  640K  80 tracks, two sides"
        .text 13, "Size (S/M/L)? ", 0
        jsr key
        bcs no_size
        and #$df                ; small letters count as capitals
        ldx #40
        ldy #1
        cmp #"S"
        beq sized
        ldx #80
        cmp #"M"
        beq sized
        iny
        cmp #"L"
        beq sized
no_size jmp ask_out
sized   stx tracks
        sty sides
        jsr echo
        jsr print
        .text 13, 13, "Everything on the disc in drive ", 0
        lda drive
        jsr oswrch
        jsr print
        .text 13, "will be lost. Go on (Y/N)? ", 0
        jsr yes
        bcs no_size
        rts

; C clear if Y is pressed; any other key is a no.
yes     jsr key
        bcs no
        and #$df
        pha
        jsr echo
        pla
        cmp #"Y"
        bne no
        clc
        rts
no      sec
        rts

; A key; C set if it is Escape, which is then forgotten.
key     lda #15
        ldx #1
        jsr osbyte              ; what was typed before the question doesn't count
        jsr osrdch
        bcc +
        lda #126
        jsr osbyte
        sec
+       rts

echo    jsr oswrch
        jmp osnewl

; ------------------------------------------------------------------------------------------------
; The NMI is how the 1770 asks for each byte; the filing system lends it to us.
claim   lda #143
        ldx #$0c
        ldy #$ff
        jsr osbyte
        sty old_nmi
        lda base
        and #$fc
        ldx drive
        cpx #"0"
        bne +
        ora #1
        bne ++
+       ora #2
+       sta base
        rts

release lda base
        and #$fc                ; no drive selected
        sta base
        jsr set_control
        lda #143
        ldx #$0b
        ldy old_nmi
        jmp osbyte

; The control latch, for the drive and the current side.
set_control
        lda base
        ldx side
        beq +
        ora side_bit
+       ldy #0
        sta (control),y
        rts

; ------------------------------------------------------------------------------------------------
; Formats, verifies and makes the disc. C set, with a message, if it failed.
format_disc
        lda #0
        sta side
        sta track
        jsr set_control
        lda #kRestore
        jsr command
        bcs report
        lda last_status
        and #kProtected
        beq +
        sta fault
        bne report
+       lda last_status
        and #kTrackZero
        bne next_cylinder
        jsr print
        .text 13, "The drive doesn't find track 0", 13, 0
        sec
        rts

next_cylinder
        lda #0
        sta side
next_side
        jsr set_control
        bit escape_flag
        bmi stopped
        jsr tell_track
        lda #3
        sta tries
try     jsr write_track
        bcs failed
        jsr verify_track
        bcs failed
        inc side
        lda side
        cmp sides
        bcc next_side
        lda #0
        sta side
        jsr set_control
        inc track
        lda track
        cmp tracks
        bcs formatted
        lda #kStepIn
        jsr command
        bcc next_cylinder
        bcs report
failed  lda fault
        and #kProtected+kNoAnswer ; trying again won't help
        bne report
        dec tries
        bne try
report  jsr explain
        sec
        rts
stopped lda #126
        jsr osbyte
        jsr print
        .text 13, "Stopped: the disc can't be used as it is", 13, 0
        sec
        rts

formatted
        lda #kRestore
        jsr command
        bcs report
        lda #0
        sta track
        jsr print
        .text 13, "Writing the empty directory", 13, 0
        jsr make_disc
        jsr write_disc
        bcs report
        jsr check_disc
        bcs report
        rts

; "Track nn side n", over the last one.
tell_track
        lda #13
        jsr oswrch              ; no OSASCI: the line stays where it is
        jsr print
        .text "Track ", 0
        lda track
        jsr decimal
        jsr print
        .text " side ", 0
        lda side
        ora #"0"
        jmp oswrch

; What went wrong, and where.
explain jsr osnewl
        bit fault               ; N is kNoAnswer, V is kProtected
        bpl +
        jsr print
        .text "The drive doesn't answer. Is a disc in it?", 13, 0
        rts
+       bvc +
        jsr print
        .text "The disc is write protected", 13, 0
        rts
+       lda fault
        and #kDiffers
        beq +
        jsr print
        .text "Read back wrong", 0
        jmp where
+       lda fault
        and #kNotFound
        beq +
        jsr print
        .text "Sector not found", 0
        jmp where
+       lda fault
        and #kCrcError
        beq +
        jsr print
        .text "CRC error", 0
        jmp where
+       jsr print
        .text "Data lost", 0
where   jsr print
        .text " at track ", 0
        lda track
        jsr decimal
        jsr print
        .text " side ", 0
        lda side
        ora #"0"
        jsr oswrch
        jsr print
        .text " sector ", 0
        lda sector
        jsr decimal
        jsr print
        .text 13, "The disc can't be used", 13, 0
        rts

; ------------------------------------------------------------------------------------------------
; One track, index to index: gap, sixteen sectors, gap. C set on a fault.
write_track
        lda #0
        sta sector
        jsr make_track
        lda #<track_image
        ldx #>track_image
        jsr serve_writes
        lda #kWriteTrack
        jsr command
        bcs +
        lda last_status
        and #kProtected+kLostData
        sta fault
        cmp #1                  ; C set if there is any
+       rts

; The bytes that the 1770 turns into a track: F5 becomes a sync mark, F7 the two check bytes.
make_track
        lda #<track_image
        sta dest
        lda #>track_image
        sta dest+1
        ldx #60
        lda #$4e
        jsr many
make_sector
        ldx #12
        lda #0
        jsr many
        ldx #3
        lda #$f5
        jsr many
        lda #$fe                ; the header: track, side, sector, 1 for 256 bytes
        jsr one
        lda track
        jsr one
        lda side
        jsr one
        lda sector
        jsr one
        lda #1
        jsr one
        lda #$f7
        jsr one
        ldx #22
        lda #$4e
        jsr many
        ldx #12
        lda #0
        jsr many
        ldx #3
        lda #$f5
        jsr many
        lda #$fb
        jsr one
        ldx #0
        lda #kFiller
        jsr many
        lda #$f7
        jsr one
        ldx #24
        lda #$4e
        jsr many
        inc sector
        lda sector
        cmp #kSectors
        bcc make_sector
-       ldx #128                ; to the index hole, however slowly the drive turns
        lda #$4e
        jsr many
        lda dest+1
        cmp #(>kTrackImageEnd)-1
        bcc -
        lda #0
        sta sector
        rts

one     ldx #1
; A, X times (0: 256 times)
many    ldy #0
-       sta (dest),y
        inc dest
        bne +
        inc dest+1
+       dex
        bne -
        rts

; All sectors read back and compared. C set on a fault.
verify_track
        lda #<sector_data
        ldx #>sector_data
        jsr serve_reads
        lda #0
        sta sector
-       jsr read_sector
        bcs verify_out
        inc sector
        lda sector
        cmp #kSectors
        bcc -
        lda #0
        sta sector
        sta pointer
        tay
        lda #>sector_data
        sta pointer+1
-       lda (pointer),y
        cmp #kFiller
        bne verify_differs
        iny
        bne -
        inc pointer+1
        inc sector
        lda sector
        cmp #kSectors
        bcc -
        lda #0
        sta sector
        clc
verify_out
        rts
verify_differs
        lda #kDiffers
        sta fault
        sec
        rts

read_sector
        lda sector
        ldy #2
        sta (fdc),y
        lda #kReadSector
        jsr command
        bcs +
        lda last_status
        and #kNotFound+kCrcError+kLostData
        sta fault
        cmp #1
+       rts

; ------------------------------------------------------------------------------------------------
; The first seven sectors of an empty disc: the two sectors of the free space map and the root.
make_disc
        lda #0
        sta pointer
        tay
        ldx #>sector_data
-       stx pointer+1
-       sta (pointer),y
        iny
        bne -
        inx
        cpx #(>sector_data)+7
        bcc --
        lda #7                  ; one free run, from sector 7 on
        sta sector_data
        ldx #2                  ; the size in sectors: 640, 1280 or 2560
        lda tracks
        cmp #80
        bcc +
        ldx #5
        lda sides
        cmp #2
        bcc +
        ldx #10
+       stx sector_data+253
        lda #0
        cpx #2
        bne +
        lda #$80
+       sta sector_data+252
        sec                     ; the run's length: all but the first seven
        sbc #7
        sta sector_data+256
        txa
        sbc #0
        sta sector_data+257
        lda #3                  ; one entry in the list, three bytes
        sta sector_data+510
        jsr identity            ; an identifier, by which ADFS knows discs apart
        sta sector_data+507
        jsr identity
        sta sector_data+508
        lda #>sector_data
        jsr checksum
        lda #(>sector_data)+1
        jsr checksum
        ldx #3
-       lda hugo,x
        sta sector_data+512+1,x
        sta sector_data+512+1275,x
        dex
        bpl -
        lda #"$"
        sta sector_data+512+1228
        sta sector_data+512+1241
        lda #13
        sta sector_data+512+1229
        sta sector_data+512+1242
        lda #2                  ; the root is its own parent
        sta sector_data+512+1238
        rts
hugo    .text "Hugo"

identity
        lda $fe44               ; a timer of the system's VIA that never rests
        rts

; The checksum of the map sector in page A: from byte 254 down, each carry into the next sum, the
; last one dropped.
checksum
        sta pointer+1
        lda #0
        sta pointer
        clc
        lda #255
        tax
        ldy #254
-       adc (pointer),y
        dey
        dex                     ; counts the 255 bytes, and leaves the carry alone
        bne -
        ldy #255
        sta (pointer),y
        rts

write_disc
        lda #<sector_data
        ldx #>sector_data
        jsr serve_writes
        lda #0
        sta sector
-       lda sector
        ldy #2
        sta (fdc),y
        lda #kWriteSector
        jsr command
        bcs +
        lda last_status
        and #kProtected+kNotFound+kCrcError+kLostData
        sta fault
        cmp #1
        bcs +
        inc sector
        lda sector
        cmp #7
        bcc -
        clc
+       rts

; Reads the seven sectors back, into the track's place, and compares.
check_disc
        lda #<track_image
        ldx #>track_image
        jsr serve_reads
        lda #0
        sta sector
-       jsr read_sector
        bcc +
        rts
+       inc sector
        lda sector
        cmp #7
        bcc -
        lda #0
        sta sector
-       lda #>track_image
        clc
        adc sector
        sta pointer+1
        lda #<track_image
        sta pointer
        lda #>sector_data
        clc
        adc sector
        sta dest+1
        lda #<sector_data
        sta dest
        ldy #0
-       lda (pointer),y
        cmp (dest),y
        bne +
        iny
        bne -
        inc sector
        lda sector
        cmp #7
        bcc --
        clc
        rts
+       jmp verify_differs

; ------------------------------------------------------------------------------------------------
; A command, to its end; its bytes, if it has any, are moved by the NMI handler. C set, fault
; kNoAnswer, if it never ends: with no disc in the drive the 1770 waits for the index hole for ever.
command ldy #0
        sta (fdc),y
        ldx #40                 ; the status is good 32 us after the command
-       dex
        bne -
        stx patience
        stx patience+1
        lda #12                 ; some ten seconds; with the NMI's share more
        sta patience+2
-       lda (fdc),y
        sta last_status
        lsr a                   ; busy: no wait for it to rise, a command may end at once
        bcc +
        inc patience
        bne -
        inc patience+1
        bne -
        dec patience+2
        bne -
        lda #kForceEnd
        sta (fdc),y
        ldx #100
-       dex
        bne -
        lda (fdc),y
        lda #kNoAnswer
        sta fault
        sec
        rts
+       clc
        rts

; ------------------------------------------------------------------------------------------------
; Puts the NMI handler that sends (or takes) bytes from (to) XA into its page.
serve_writes
        sta write_from+1-nmi_page+write_code
        stx write_from+2-nmi_page+write_code
        lda fdc
        sta write_status+1-nmi_page+write_code
        ora #3
        sta write_data+1-nmi_page+write_code
        ldx #write_code_end-write_code-1
-       lda write_code,x
        sta nmi_page,x
        dex
        bpl -
        rts

serve_reads
        sta read_to+1-nmi_page+read_code
        stx read_to+2-nmi_page+read_code
        lda fdc
        sta read_status+1-nmi_page+read_code
        ora #3
        sta read_data+1-nmi_page+read_code
        ldx #read_code_end-read_code-1
-       lda read_code,x
        sta nmi_page,x
        dex
        bpl -
        rts

; At 250000 bits a second there are 64 cycles to a byte; these take about 50.
write_code
        .logical nmi_page
        pha
write_status
        lda $fe84
        and #kDataRequest
        beq write_out
write_from
        lda $ffff
write_data
        sta $fe87
        inc write_from+1
        bne write_out
        inc write_from+2
write_out
        pla
        rti
        .here
write_code_end

read_code
        .logical nmi_page
        pha
read_status
        lda $fe84
        and #kDataRequest
        beq read_out
read_data
        lda $fe87
read_to sta $ffff
        inc read_to+1
        bne read_out
        inc read_to+2
read_out
        pla
        rti
        .here
read_code_end

; ------------------------------------------------------------------------------------------------
; Prints the text behind the call, up to a 0, and returns behind it.
print   pla
        sta text
        pla
        sta text+1
        ldy #0
-       inc text
        bne +
        inc text+1
+       lda (text),y
        beq +
        jsr osasci
        jmp -
+       lda text+1
        pha
        lda text
        pha
        rts

; A (0 to 99) in two digits.
decimal ldx #"0"
        sec
-       sbc #10
        bcc +
        inx
        bcs -
+       adc #10+"0"
        pha
        txa
        jsr oswrch
        pla
        jmp oswrch

; ------------------------------------------------------------------------------------------------
        .cerror * > kLoad + kSize - 1, "the formatter has outgrown its length"
        .fill kLoad + kSize - 1 - *, 0
        .byte kBalance
