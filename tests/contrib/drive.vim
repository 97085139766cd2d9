" SPDX-License-Identifier: MIT
" Carries out the steps of the job that $JOB names, and writes what is to be seen to $ANSWER.

let s:job = json_decode(join(readfile($JOB)))
let s:messages = ''

function s:place(line, bytes) abort
  let before = a:line > 1 ? getline(1, a:line - 1) + [''] : ['']
  return strchars(join(before, "\n")) + strchars(strpart(getline(a:line), 0, a:bytes))
endfunction

function s:goTo(place) abort
  let before = split(strcharpart(join(getline(1, '$'), "\n"), 0, a:place), "\n", 1)
  call cursor(len(before), strlen(before[-1]) + 1)
endfunction

function s:select(anchor, cursor) abort
  call s:goTo(a:anchor)
  normal! v
  call s:goTo(a:cursor - 1)
  execute "normal! \<Esc>"
endfunction

function s:Visit(name) abort
  let folder = fnamemodify(s:job.file, ':h:h')
  execute 'hide edit' fnameescape(folder . '/' . a:name)
endfunction

let s:range = s:job.anchor is v:null ? '' : "'<,'>"
let s:steps = {
      \ 'toggle': {-> execute(s:range . 'TessalyToggle', '')},
      \ 'cancel': {-> execute(s:range . 'TessalyCancel', '')},
      \ 'reopen': {-> execute(s:range . 'TessalyReopen', '')},
      \ 'schedule': {day -> execute(s:range . 'TessalySchedule ' . day, '')},
      \ 'undo': {-> execute('TessalyUndo', '')},
      \ 'open': {note -> execute('TessalyOpen ' . note, '')},
      \ 'mark': {action -> execute(s:range . 'TessalyMark ' . action, '')},
      \ 'write': {text -> [setline('.', getline('.') . text), ''][1]},
      \ 'visit': {name -> [s:Visit(name), ''][1]},
      \ 'editorUndo': {-> [execute('undo'), ''][1]},
      \ 'outside': {text -> [writefile(split(text, "\n"), s:job.file), ''][1]},
      \ 'normal': {keys -> execute('normal ' . keys, '')},
      \ 'complete': {-> join(getcompletion('TessalyMark ', 'cmdline'))},
      \ 'ex': {command -> execute(command, '')},
      \ }

execute 'edit' fnameescape(s:job.file)
let s:keys = !empty(maparg('<LocalLeader>tt', 'n')) && !empty(maparg('<LocalLeader>tb', 'x'))
if s:job.anchor is v:null
  call s:goTo(s:job.cursor)
else
  call s:select(s:job.anchor, s:job.cursor)
endif
for s:step in s:job.steps
  let s:messages .= call(s:steps[s:step[0]], s:step[1:]) . "\n"
endfor

let s:start = s:place(line("'<"), col("'<") - 1)
let s:last = matchstr(strpart(getline("'>"), col("'>") - 1), '^.')
let s:end = s:place(line("'>"), col("'>") - 1) + strchars(s:last)
let s:isSelected = s:job.anchor isnot v:null
call writefile([json_encode({
      \ 'text': getline(1, '$') == [''] ? '' : join(getline(1, '$'), "\n") . (&endofline ? "\n" : ''),
      \ 'cursor': s:isSelected ? s:end : s:place(line('.'), col('.') - 1),
      \ 'anchor': s:isSelected ? s:start : v:null,
      \ 'messages': s:messages,
      \ 'file': expand('%:p'),
      \ 'modified': &modified,
      \ 'keys': s:keys,
      \ })], $ANSWER)
qall!
