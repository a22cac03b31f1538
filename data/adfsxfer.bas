   10REM ADFSXFER - disc transfer server
   20REM The PC asks, this answers. Escape ends.
   30MODE 135
   40new%=-1:ON ERROR ON ERROR OFF:PROCbye:IF ERR=17 PRINT"Server ended":END ELSE REPORT:PRINT" at line ";ERL:END
   50PRINT"ADFSXFER - disc transfer server"'
   60X%=0:Y%=255:A%=234:IF(USR&FFF4 AND &FF00) PRINT"Please turn the second processor off":END
   70REM code, line buffer, disc and name blocks
   80DIM M% 1099,L% 259,O% 15,G% 31
   90PROCasm
  100REM All the rest up to the screen is the buffer
  110DIM T% -1
  120N%=HIMEM:B%=(T%+1279)DIV256*256:HIMEM=B%:N%=N%-B%
  130ack$="-----BBC-----PC-----"
  140bad$="-----BBCerror1-----PC-----"
  150err$="No error":slow$="":new%=-1:cur%=-2
  160?top=(B%+N%)DIV256-1:?beg=B%DIV256
  170CALL mk
  180PRINT"Buffer ";N%;" bytes":PROCspeed(1200)
  190PRINT"Escape ends"'
  200REPEAT ?pk=0:CALL lis
  210REPEAT R%=?res:more%=FALSE:IF R%=1 PROCdo
  220IF R%=2 PRINT"Noise on the line":PROCspeed(1200)
  230UNTIL NOT more%
  240UNTIL R%=0
  250PROCbye:PRINT"Server ended":END
  260:
  270REM One command, in the line buffer
  280DEF PROCdo:LOCAL c$:c$=LEFT$($L%,1)
  290IF INSTR("*QS",c$) slow$=""
  300IF c$="*" PROCstar:ENDPROC
  310IF c$="-" IF LEFT$($L%,26)=bad$ PROCsay(err$):ENDPROC
  320IF c$="B" PROCsay(STR$N%+CHR$13):ENDPROC
  330IF c$="Q" PROCfresh:PRINT"The PC has finished":PROCspeed(1200):ENDPROC
  340IF c$="S" PROCs(VALMID$($L%,2)):ENDPROC
  350IF INSTR("Aac",c$) PROCsec
  360ENDPROC
  370:
  380DEF PROCs(s%):IF FNrate(s%)=0 ENDPROC
  390PROCspeed(s%):T%=TIME:REPEATUNTILTIME>T%+99
  400PROCsay(ack$+CHR$13):ENDPROC
  410:
  420DEF FNrate(s%)
  430IF s%=19200 THEN=8
  440IF s%=9600 THEN=7
  450IF s%=4800 THEN=6
  460IF s%=2400 THEN=5
  470IF s%=1200 THEN=4
  480=0
  490:
  500DEF PROCspeed(s%):LOCAL A%,X%,Y%:X%=FNrate(s%):Y%=0
  510A%=7:CALL&FFF4:A%=8:CALL&FFF4
  520PRINT"Listening at ";s%;" baud":ENDPROC
  530:
  540DEF PROCsay(a$):$L%=a$:!p=L%:!n=LENa$:CALL raw:ENDPROC
  550:
  560REM Sectors: A reads, a writes, c checks
  570DEF PROCsec:LOCAL d%,s%,k%,e%,t%,c$,q$
  580c$=LEFT$($L%,1):?L%=48:t%=L%
  590d%=FNnum:s%=FNnum:k%=FNnum
  600IF t%=0 PRINT"Not understood":ENDPROC
  610q$=c$+STR$d%+"/"+STR$s%+"/"+STR$k%
  620PRINTMID$("Read WriteCheck",INSTR("A    a    c",c$),5);" drive ";d%;" sector ";s%;" to ";s%+k%-1;
  630IF d%>5 OR (d%AND2) OR k%=0 OR k%>N%DIV256 e%=61
  640IF e% PROCfail:ENDPROC
  650IF c$="a" IF FNfetch(k%*256) ENDPROC
  660IF q$=slow$ e%=255
  670slow$="":IF e%=0 e%=FNdisc(8-2*(c$="a"),d%,s%,k%)
  680IF c$="a" new%=d%
  690IF e% PROCfail:ENDPROC
  700PRINT
  710IF c$<>"a" !p=B%:!n=k%*256
  720IF c$="A" CALL snd
  730IF c$="c" CALL sum
  740PROCsay(STR$(!crc AND &FFFF)+CHR$13):ENDPROC
  750:
  760REM A number up to CR; t%=0 if it is none
  770DEF FNnum:LOCAL v%,a$:IF t%=0 THEN=0
  780a$=$t%:IF t%=L% a$=MID$(a$,2)
  790v%=VALa$:IF STR$v%<>a$ OR v%<0 OR v%>&1FFFFF t%=0:=0
  800t%=t%+LEN$t%+1:=v%
  810:
  820REM ADFS tries for up to 80 s, the PC waits for
  830REM 10 (read: 30) and asks again. So look if it
  840REM has; and if it asks the same again, it's told
  850REM at once.
  860DEF PROCfail:PRINT" failed: ";e%:slow$=q$
  870?pk=250:CALL lis:more%=?res<>3
  880IF NOT more% PROCsay(CHR$27+CHR$2)
  890ENDPROC
  900:
  910REM The data for a write; TRUE if none came.
  920REM A stream that makes no sense is answered by
  930REM a number that is no CRC, so it comes again.
  940DEF FNfetch(l%):PROCsay(ack$+CHR$13):!p=B%:!n=l%:CALL rcv
  950IF ?res=0 THEN=FALSE
  960IF ?res=1 PRINT" abandoned":=TRUE
  970IF ?res=2 PRINT" broken off":=TRUE
  980PRINT" garbled":PROCsay("65536"+CHR$13):=TRUE
  990:
 1000REM Sectors by the filing system's own call
 1010DEF FNdisc(f%,d%,s%,k%):IF FNon(d%) THEN=255
 1020!O%=B%*256:O%?4=0:O%?5=f%:O%?6=d%*32+s%DIV65536
 1030O%?7=s%DIV256:O%?8=s%:O%?9=k%:O%?10=0:O%!11=0
 1040IF FNos(&FFF1,&72,O%) THEN=255
 1050=?O%
 1060:
 1070REM ADFS ORs the drive with the current one, so
 1080REM that one must be this or unset. TRUE: failed
 1090DEF FNon(d%):LOCAL A%,Y%,c%:IF (USR&FFDA AND 255)<>8 THEN=TRUE
 1100IF cur%=-2 O%!1=G%:cur%=-1:IF FNos(&FFD1,6,O%)=0 cur%=(G%?1)AND7
 1110IF cur%<0 THEN=FALSE
 1120IF (cur%OR d%)=d% THEN=FALSE
 1130cur%=-2:$G%="MOUNT "+STR$d%:=FNos(&FFF7,0,G%)
 1140:
 1150REM Sectors were changed under ADFS: mount anew
 1160DEF PROCfresh:IF new%<0 ENDPROC
 1170$G%="MOUNT "+STR$new%:new%=-1:cur%=-2
 1180IF FNos(&FFF7,0,G%) PRINT"Not mounted: ";FNerr
 1190ENDPROC
 1200:
 1210REM A call of the OS; TRUE if it ended in an error
 1220DEF FNos(a%,A%,b%):LOCAL X%,Y%:?(go+1)=a%:?(go+2)=a%DIV256
 1230X%=b%:Y%=b%DIV256:CALL trp:=?res<>0
 1240DEF FNerr:LOCAL a$,e%:e%=(!&FD AND &FFFF)+1
 1250REPEAT IF ?e% a$=a$+CHR$?e%:e%=e%+1
 1260UNTIL ?e%=0 OR LENa$>99:=a$
 1270:
 1280REM Output goes into the buffer, then to the PC
 1290DEF PROCstar:LOCAL e%,w%:PRINT$L%:PROCfresh:cur%=-2
 1300w%=!&20E AND &FFFF:?(at+1)=B%:?(at+2)=B%DIV256:?lf=0:?live=0
 1310?&20E=wr:?&20F=wr DIV256:e%=FNos(&FFF7,0,L%)
 1320?&20E=w%:?&20F=w%DIV256:CALL mk
 1330IF e% err$=FNerr:PRINTerr$:PROCsay(bad$+CHR$13):ENDPROC
 1340IF ?live PROCsay(ack$+CHR$13):ENDPROC
 1350e%=(!(at+1)AND&FFFF):IF ?lf>127 ?e%=10:e%=e%+1
 1360$e%=ack$:!p=B%:!n=e%-B%+LENack$+1:CALL raw:ENDPROC
 1370:
 1380DEF PROCbye:IF new%>=0 PROCfresh
 1390X%=0:Y%=255:A%=156:CALL&FFF4:A%=126:CALL&FFF4
 1400A%=15:X%=0:CALL&FFF4:ENDPROC
 1410:
 1420DEF PROCasm:p=&70:n=&72:crc=&74:h=&76:t=&77:v=&78:run=&79:w=&7A
 1430lim=&7D:len=&7D:crs=&7E:fe=&7F:over=&80:off=&81:res=&82:dead=&83:pk=&84
 1440acia=&FE08:lo=&900:hi=&A00
 1450FOR I%=0 TO 2 STEP2:P%=M%
 1460[OPT I%
 1470\ Send A when the PC lets us
 1480.tx PHA:BIT dead:BMI tx3
 1490.tx1 LDA acia:AND #2:BNE tx2
 1500INC w:BNE tx1:INC w+1:BNE tx1
 1510JSR esc:BPL tx1:STA dead:BMI tx3
 1520.tx2 PLA:STA acia+1:RTS
 1530.tx3 PLA:RTS
 1540\ Minus if Escape is down
 1550.esc TXA:PHA:TYA:PHA:LDA #&81:LDX #&8F:LDY #&FF:JSR &FFF4
 1560STX w+2:PLA:TAY:PLA:TAX:LDA w+2:RTS
 1570\ Tables for the CRC
 1580.mk LDX #0
 1590.mk1 STX crc+1:LDA #0:STA crc:LDY #8
 1600.mk2 ASL crc:ROL crc+1:BCC mk3:LDA crc:EOR #&AF:STA crc
 1610.mk3 DEY:BNE mk2:LDA crc:STA lo,X:LDA crc+1:STA hi,X:INX:BNE mk1:RTS
 1620\ A into the CRC
 1630.upd EOR crc+1:TAX:LDA crc:EOR hi,X:STA crc+1:LDA lo,X:STA crc:RTS
 1640\ CRC of n bytes at p
 1650.sum LDY #0:STY crc:STY crc+1
 1660.sm1 LDA n:ORA n+1:BEQ sm9
 1670LDA (p),Y:JSR upd:INC p:BNE sm2:INC p+1
 1680.sm2 LDA n:BNE sm3:DEC n+1
 1690.sm3 DEC n:JMP sm1
 1700.sm9 RTS
 1710\ Send n bytes at p as they are
 1720.raw PHP:SEI:LDY #0:STY dead
 1730.rw1 LDA n:ORA n+1:BEQ rw9
 1740LDA (p),Y:JSR tx:INC p:BNE rw2:INC p+1
 1750.rw2 LDA n:BNE rw3:DEC n+1
 1760.rw3 DEC n:JMP rw1
 1770.rw9 PLP:RTS
 1780\ Send n bytes at p as a stream
 1790.snd PHP:SEI:LDA #0:STA dead:STA crc:STA crc+1
 1800.sn1 LDX n:LDA n+1:BEQ sn2:LDX #255
 1810.sn2 STX lim:TXA:BEQ sn9
 1820LDY #0:LDA (p),Y:STA v
 1830.sn3 INY:CPY lim:BEQ sn4:CMP (p),Y:BEQ sn3
 1840.sn4 STY run:CPY #4:BCC sn5
 1850LDA #27:JSR put:LDA #0:JSR put:LDA run:JSR put:LDA v:JSR put:JMP sn7
 1860.sn5 LDA v:JSR put:LDA v:CMP #27:BNE sn6:LDA #1:JSR put
 1870.sn6 DEY:BNE sn5
 1880.sn7 CLC:LDA p:ADC run:STA p:BCC sn8:INC p+1
 1890.sn8 SEC:LDA n:SBC run:STA n:BCS sn1:DEC n+1:BCC sn1
 1900.sn9 LDA #27:JSR put:LDA #3:JSR put:PLP:RTS
 1910.put PHA:JSR upd:PLA:JMP tx
 1920\ A byte that comes while we're busy is kept
 1930.pol LDA acia:LSR A:BCC po9
 1940STX w+2:LDX h:LDA acia+1:STA L%,X:INC h
 1950TXA:SEC:SBC t:BPL po1:LDA #&56:STA acia:STA off
 1960.po1 LDX w+2
 1970.po9 LDA v:RTS
 1980\ The stream's next byte; C set if none comes
 1990.get LDX t:CPX h:BNE ge5
 2000LDA off:BEQ ge1:LDA #&16:STA acia:LDA #0:STA off
 2010.ge1 LDA #0:STA w:STA w+1:LDA #3:STA w+2
 2020.ge2 LDA acia:LSR A:BCS ge4
 2030INC w:BNE ge2:INC w+1:BNE ge2:DEC w+2:BNE ge2
 2040SEC:RTS
 2050.ge4 LDA acia+1:JMP ge6
 2060.ge5 LDA L%,X:INC t
 2070.ge6 PHA:JSR upd:PLA:CLC:RTS
 2080\ Take a stream to p; n is its length
 2090.rcv PHP:SEI:LDA #0:STA crc:STA crc+1:STA h:STA t:STA over:STA off
 2100LDA #&16:STA acia
 2110.rc1 JSR get:BCS rc7:CMP #27:BEQ rc3
 2120.rc2 LDX #1:STX run:STA v:JSR fil:JMP rc1
 2130.rc3 JSR get:BCS rc7:CMP #1:BNE rc4:LDA #27:BNE rc2
 2140.rc4 CMP #0:BNE rc5
 2150JSR get:BCS rc7:STA run:JSR get:BCS rc7:STA v
 2160JSR fil:JMP rc1
 2170.rc5 CMP #3:BEQ rc6:LDX #1:CMP #2:BEQ rc8
 2180JSR fls:LDX #3:BNE rc8
 2190.rc6 LDX #3:LDA over:ORA n:ORA n+1:BNE rc8:LDX #0:BEQ rc8
 2200.rc7 LDX #2
 2210.rc8 STX res:LDA #&56:STA acia:PLP:RTS
 2220\ Store v run times, looking at the line
 2230.fil SEC:LDA n:SBC run:TAX:LDA n+1:SBC #0:BCS fi1:STA over:RTS
 2240.fi1 STA n+1:STX n:LDY #0:LDX run:LDA v
 2250.fi2 CPX #8:BCC fi3
 2260]
 2270FOR J%=1 TO 8:[OPT I%:STA (p),Y:INY:]:NEXT
 2280[OPT I%
 2290TXA:SBC #8:TAX:JSR pol:JMP fi2
 2300.fi3 TXA:BEQ fi5:LDA v
 2310.fi4 STA (p),Y:INY:DEX:BNE fi4
 2320.fi5 TYA:CLC:ADC p:STA p:BCC fi6:INC p+1
 2330.fi6 RTS
 2340\ Throw bytes away until the line is silent
 2350.fls LDX #0:STX w:LDA #128:STA w+1
 2360.fl1 LDA acia:TAX:LSR A:BCS fl2
 2370INC w:BNE fl1:INC w+1:BNE fl1:RTS
 2380.fl2 LDA acia+1:TXA:AND #16:BEQ fls:INC fe:BNE fls:DEC fe:BNE fls
 2390\ Wait for a command; res 0 Escape, 1 it came, 2 wrong speed, 3 pk ran out
 2400.lis PHP:SEI:LDA acia+1:LDA #&16:STA acia
 2410.li0 LDA #0:STA fe
 2420.li1 LDA acia:LSR A:BCS li2
 2430INC w:BNE li1:LDX #0:JSR esc:BMI li9
 2440LDA pk:BEQ li1:DEC pk:BNE li1:LDX #3
 2450.li9 STX res:LDA #&56:STA acia:PLP:RTS
 2460.li8 LDA acia+1:JSR fls:LDA fe:CMP #4:BCC li0:LDX #2:BNE li9
 2470.li2 JSR rd:BCS li8:STA L%:LDX #1:LDY #255
 2480CMP #42:BEQ li4:CMP #83:BEQ li4:CMP #66:BEQ li4
 2490LDX #3:CMP #65:BEQ li4:CMP #97:BEQ li4:CMP #99:BEQ li4
 2500LDX #0:LDY #1:CMP #81:BEQ li4
 2510INY:CMP #27:BEQ li4:LDY #26:CMP #45:BEQ li4:BNE lib
 2520.lia JMP li0
 2530.lib JMP li8
 2540.li3 LDX #1:JMP li9
 2550.li4 STX crs:STY len:LDX #1
 2560.li5 CPX len:BEQ li6
 2570LDY #2:JSR wt:BCC lia:JSR rd:BCS lib
 2580STA L%,X:INX:CMP #13:BNE li5:DEC crs:BNE li5:BEQ li7
 2590.li6 CPX #255:BEQ lib
 2600.li7 LDA #13:STA L%,X
 2610LDA L%:CMP #83:BEQ li3:CMP #81:BEQ li3:LDY #0:JSR wt:BCS lib
 2620LDA L%:CMP #27:BNE li3:BEQ lia
 2630\ Wait Y*0.6 s (20 ms if 0) for a byte; C set if it's there
 2640.wt LDA #0:STA w:CPY #1:BCS wt0:LDA #247
 2650.wt0 STA w+1
 2660.wt1 LDA acia:LSR A:BCS wt2
 2670INC w:BNE wt1:INC w+1:BNE wt1:DEY:BMI wt2:BNE wt1
 2680CLC
 2690.wt2 RTS
 2700\ Its value; C set if it came in broken
 2710.rd LDA acia:AND #&30:CMP #1:LDA acia+1:RTS
 2720\ A call of the OS with BRK caught
 2730.trp STX w:STY w+1:TSX:STX sp
 2740LDX &202:STX ob:LDX &203:STX ob+1
 2750LDX #ct MOD256:STX &202:LDX #ct DIV256:STX &203
 2760LDX w:LDY w+1
 2770.go JSR &FFFF:LDA #0
 2780.tr1 STA res:LDA ob:STA &202:LDA ob+1:STA &203:RTS
 2790.ct LDX sp:TXS:CLD:CLI:LDA #1:BNE tr1
 2800.sp BRK
 2810.ob BRK:BRK
 2820\ WRCH while a star command runs; LF CR goes as CR
 2830.wr STA ch:BIT lf:BPL wr2:LSR lf:CMP #13:BEQ wr3
 2840LDA #10:JSR em:LDA ch
 2850.wr2 CMP #10:BNE wr3:LDA #&80:STA lf:BNE wr9
 2860.wr3 JSR em
 2870.wr9 LDA ch:RTS
 2880.ch BRK
 2890.lf BRK
 2900.live BRK
 2910.beg BRK
 2920.top BRK
 2930.em BIT live:BMI emt
 2940.at STA &FFFF:INC at+1:BNE em9:INC at+2
 2950LDA at+2:CMP top:BEQ ful
 2960.em9 RTS
 2970.emt JMP tx
 2980\ Buffer full, send it, and then the rest as it comes
 2990.ful ROR live:TXA:PHA:TYA:PHA:LDA #0:STA p:STA n:LDA beg:STA p+1
 3000SEC:LDA top:SBC beg:STA n+1:JSR raw:PLA:TAY:PLA:TAX:RTS
 3010]
 3020NEXT:IF P%>M%+1100 PRINT"The code outgrew M%":END
 3030ENDPROC
