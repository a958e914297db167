" Vim syntax file
" Language:    kvexec job-control scripts (*.kvx)
" Maintainer:  the kvexec developers
"
" Later items win where two start at the same place, so variables come first, then functions,
" then statements: "&TYPE" is a statement, "&LEN" a function, "&TPYE" a variable.

if exists('b:current_syntax')
  finish
endif

let s:cpo_save = &cpo
set cpo&vim

syn case ignore

syn match kvexecComparator "==\|<>\|!=\|>=\|<=\|[=<>]"
syn match kvexecNumber "\<\d\+\%(\.\d\+\)\=\>"
syn match kvexecVariable "&\+\%([[:alnum:]]\+\|\*\)"
syn match kvexecFunction "&\%(CAT\|ENV\|EXIST\|FILESIZE\|INDEX\|LEN\|LIT\|SUB\|TYP\|SYSTEM\)\>"
syn match kvexecStatement "&\%(BEGSTACK\|BEGTYPE\|BREAK\|CALL\|CRT\|CONTINUE\|CONTROL\|ELSEIF\|ELSE\|END\|ENDIF\|ERROR\|ESC\|FOR\|GOTO\|IF\|IFEND\|LOOP\|MENU\|NEXT\|QUIT\|READ\|RETURN\|SHIFT\|SKIP\|SLEEP\|SPACE\|STACK\|TYPE\|UNTIL\|WAIT\|WEND\|WHILE\)\>"

" A double-quoted string; a doubled quote stands for one quote. References are replaced inside.
syn region kvexecString start=+"+ skip=+""+ end=+"+ oneline contains=kvexecVariable

" A ";" outside a string ends every line: the rest is a comment.
syn match kvexecComment ";.*$" contains=@Spell
syn match kvexecComment "^\s*[;#].*$" contains=@Spell

" label: at the start of a line, alone or before a comment
syn match kvexecLabel "^\s*\zs[a-z._/][[:alnum:]]*:\ze\%(\s\|;\|$\)"

" The lines of &BEGTYPE and &BEGSTACK up to &END are text, written or stacked as they are.
syn region kvexecText matchgroup=kvexecStatement start="^\s*&BEG\%(TYPE\|STACK\)\>.*$" end="^\s*&END\>.*$"

hi def link kvexecComment    Comment
hi def link kvexecLabel      Label
hi def link kvexecStatement  Statement
hi def link kvexecFunction   Function
hi def link kvexecVariable   Identifier
hi def link kvexecString     String
hi def link kvexecNumber     Number
hi def link kvexecComparator Operator
hi def link kvexecText       String

let b:current_syntax = 'kvexec'

let &cpo = s:cpo_save
unlet s:cpo_save
