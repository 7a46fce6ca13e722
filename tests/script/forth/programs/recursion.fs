\ Recursion, the second stack and definitions that use one another.
: FACT ( n -- n! ) DUP 1 > IF DUP 1- RECURSE * ELSE DROP 1 THEN ;
: FIB ( n -- f ) DUP 2 < IF EXIT THEN DUP 1- RECURSE SWAP 2 - RECURSE + ;
: FACTS 13 0 DO I FACT . LOOP ;
: FIBS 20 0 DO I FIB . LOOP ;
: SUM3 ( a b c -- s ) >R + R> + ;
FACTS CR
FIBS CR
1 2 3 SUM3 . CR
: COLLATZ ( n -- steps ) 0 SWAP BEGIN DUP 1 <> WHILE
    DUP 2 MOD IF 3 * 1+ ELSE 2/ THEN SWAP 1+ SWAP REPEAT DROP ;
27 COLLATZ . 97 COLLATZ . CR
