" Vim syntax file: configuration of tarnwick, see tarnwick.conf(5).
if exists('b:current_syntax')
  finish
endif
let s:saved_options = &cpoptions
set cpoptions&vim

" The first character alone decides what a line is.
syntax match tarnwickFault /^.*$/
syntax match tarnwickComment /^[#;].*$/ contains=tarnwickTodo,@Spell
syntax match tarnwickGroup /^\[[ A-Za-z0-9._-]*\]$/
syntax match tarnwickKey /^[A-Za-z0-9._-][ A-Za-z0-9._-]*\ze=/ nextgroup=tarnwickEquals
syntax match tarnwickEquals /=/ contained nextgroup=tarnwickValue
syntax match tarnwickValue /.*$/ contained contains=tarnwickSeparator,tarnwickDollar,tarnwickEscape,tarnwickTemplate
syntax match tarnwickSeparator /;/ contained
syntax match tarnwickDollar /\$/ contained
syntax match tarnwickEscape /\$\$/ contained
syntax match tarnwickTemplate /\${[^};]*}/ contained
syntax keyword tarnwickTodo TODO FIXME XXX contained

highlight default link tarnwickFault Error
highlight default link tarnwickDollar Error
highlight default link tarnwickComment Comment
highlight default link tarnwickTodo Todo
highlight default link tarnwickGroup Title
highlight default link tarnwickKey Identifier
highlight default link tarnwickEquals Operator
highlight default link tarnwickValue String
highlight default link tarnwickSeparator Delimiter
highlight default link tarnwickEscape SpecialChar
highlight default link tarnwickTemplate PreProc

let b:current_syntax = 'tarnwick'
let &cpoptions = s:saved_options
unlet s:saved_options
