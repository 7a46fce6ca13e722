0: SQ DUP * ;
3 SQ .
: OPEN
1 2
;
