\ Text, characters and the stack display.
: GREET ." Hello, " ." world!" CR ;
GREET
CHAR A EMIT CHAR B EMIT SPACE 3 SPACES CHAR c EMIT CR
: ALPHABET [CHAR] Z 1+ [CHAR] A DO I EMIT LOOP ;
ALPHABET CR
1 2 3 .S CR
ROT .S CR
2DROP DROP .S CR
( a comment ) .( shown at once) CR
: NUMS 5 0 DO I 3 .R LOOP ; NUMS CR
: QUOTE [CHAR] " EMIT ; QUOTE CR
