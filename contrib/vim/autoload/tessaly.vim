" SPDX-License-Identifier: MIT
" Commands on tasks save the notes, let the program change the files, and read them again. Commands
" on text let the program be a filter, and change the buffer alone.

let s:actions = ['bold', 'italic', 'link', 'inlineCode', 'heading1', 'heading2', 'heading3',
      \ 'heading4', 'todo', 'numberedTodo', 'unorderedList', 'orderedList', 'markAsDone',
      \ 'markAsScheduled', 'markAsCanceled', 'shiftRight', 'shiftLeft', 'moveUp', 'moveDown', 'quote']
let s:days = ['today', 'tomorrow', 'yesterday', 'mon', 'tue', 'wed', 'thu', 'fri', 'sat', 'sun',
      \ '+1d', '+3d', '+1w', '+1m']
let s:markerKeys = ['isAsteriskTodo', 'isDashTodo', 'isNumbersTodo']
let s:longestExpected = 1000  " characters; an argument of a program cannot be of any length

" What users call. Lines are counted from 1, the last one included.

function tessaly#toggle(first, last) abort
  call s:attempt(function('s:toggle', [a:first, a:last]))
endfunction

function tessaly#cancel(first, last) abort
  call s:attempt(function('s:change', ['cancel', a:first, a:last, []]))
endfunction

function tessaly#reopen(first, last) abort
  call s:attempt(function('s:change', ['reopen', a:first, a:last, []]))
endfunction

" Asks for the day when it is empty.
function tessaly#schedule(first, last, day) abort
  call s:attempt(function('s:schedule', [a:first, a:last, a:day]))
endfunction

" Takes back the last change of tasks, or as many as `count` says, in all notes.
function tessaly#undo(count) abort
  call s:attempt(function('s:undo', [a:count]))
endfunction

" Goes to a day's note or any other; asks when it is empty.
function tessaly#open(note) abort
  call s:attempt(function('s:open', [a:note]))
endfunction

" `range` is how many line numbers the command was given: none means the cursor.
function tessaly#mark(action, range, first, last) abort
  call s:attempt(function('s:mark', [a:action, a:range, a:first, a:last]))
endfunction

" Whether the buffer's file lies in the data folder. Says nothing when that cannot be found out.
function tessaly#isNote() abort
  try
    if !exists('s:knownFolder') || s:knownFolder[0] !=# s:program()
      let s:knownFolder = [s:program(), s:dataFolder()]
    endif
    return !empty(s:nameIn(s:knownFolder[1], bufnr('%')))
  catch /^tessaly:/
    return 0
  endtry
endfunction

function tessaly#completeAction(...) abort
  return join(s:actions, "\n")
endfunction

function tessaly#completeDay(...) abort
  return join(s:days, "\n")
endfunction

" Messages.

function s:attempt(step) abort
  try
    call a:step()
  catch /^tessaly:/
    call s:complain(v:exception)
  catch /^Vim\%((\a\+)\)\?:E/
    call s:complain('tessaly: ' . substitute(v:exception, '^Vim\%((\a\+)\)\?:', '', ''))
  endtry
endfunction

function s:complain(text) abort
  echohl ErrorMsg
  for line in split(a:text, "\n")
    echomsg line
  endfor
  echohl None
endfunction

" One line that fits, so that nothing has to be confirmed.
function s:tell(lines) abort
  if empty(a:lines)
    return
  endif
  let more = len(a:lines) > 1 ? printf(' (and %d more)', len(a:lines) - 1) : ''
  let space = max([get(v:, 'echospace', &columns - 30) - strchars(more), 20])
  let text = strcharpart(a:lines[0], 0, space)
  while strdisplaywidth(text) > space
    let text = strcharpart(text, 0, strchars(text) - 1)
  endwhile
  redraw
  echo text . more
endfunction

" The program.

function s:program() abort
  let words = [expand(get(g:, 'tessaly_command', 'tessaly'))]
  let folder = get(g:, 'tessaly_root', '')
  return empty(folder) ? words : words + ['--root', expand(folder)]
endfunction

" {'status', 'output', 'errors'}: the exit status, and lists of lines.
function s:run(arguments, ...) abort
  let words = s:program()
  if !executable(words[0])
    throw 'tessaly: the program ' . words[0] . ' cannot be found; set g:tessaly_command'
  endif
  let kept = map(['shell', 'shellcmdflag', 'shellredir', 'shellquote', 'shellxquote'],
        \ {_, name -> [name, eval('&' . name)]})
  let errors = tempname()
  try
    set shell=/bin/sh shellcmdflag=-c shellredir=>%s shellquote= shellxquote=
    let line = join(map(words + a:arguments, {_, word -> shellescape(word)}))
    let errorsTo = ' 2>' . shellescape(errors) . ')'
    if a:0
      let output = system('(' . line . errorsTo, a:1)
    else
      let output = system('(' . line . ' </dev/null' . errorsTo)
    endif
    let status = v:shell_error
  finally
    for [name, value] in kept
      execute 'let &' . name . ' = value'
    endfor
  endtry
  let told = filereadable(errors) ? readfile(errors) : []
  call delete(errors)
  return {'status': status, 'output': split(output, "\n"), 'errors': told}
endfunction

" The program's output; throws what it complains of.
function s:ask(arguments, ...) abort
  let ended = call('s:run', [a:arguments] + a:000)
  if ended.status != 0
    throw s:reasonOf(ended)
  endif
  return ended.output
endfunction

function s:reasonOf(ended) abort
  return empty(a:ended.errors) ? 'tessaly: the program ended with ' . a:ended.status
        \ : 'tessaly: ' . substitute(join(a:ended.errors, "\n"), '^tessaly: ', '', '')
endfunction

" A JSON object that the program printed.
function s:record(text) abort
  try
    let record = json_decode(a:text)
  catch /^Vim/
    let record = v:null
  endtry
  if type(record) != v:t_dict
    throw 'tessaly: the program cannot be understood; is it of another version?'
  endif
  return record
endfunction

" The result of one request to `tessaly rpc`; throws the message of its error.
function s:request(method, params) abort
  let request = json_encode({'id': 1, 'method': a:method, 'params': a:params})
  let answer = s:record(join(s:ask(['rpc'], request . "\n")))
  if has_key(answer, 'error')
    throw 'tessaly: ' . answer.error.message
  endif
  return answer.result
endfunction

" The data folder and its notes.

" The file of a note. A day's need not be there.
function s:fileOf(note) abort
  return s:record(join(s:ask(['where', '--json', '--', a:note]))).path
endfunction

function s:dataFolder() abort
  return resolve(s:record(join(s:ask(['where', '--json']))).root)
endfunction

" How the program calls a buffer's file: 'Notes/Work/Plans.txt'. Empty: it is no note.
function s:nameIn(folder, buffer) abort
  let path = resolve(fnamemodify(bufname(a:buffer), ':p'))
  let start = a:folder . '/'
  if empty(bufname(a:buffer)) || !empty(getbufvar(a:buffer, '&buftype'))
        \ || strpart(path, 0, strlen(start)) !=# start
    return ''
  endif
  let name = strpart(path, strlen(start))
  return name =~# '^\%(Calendar\|Notes\)/.*\.\%(txt\|md\)$' && name !~# '/[.]' ? name : ''
endfunction

function s:openNotes(folder) abort
  return filter(range(1, bufnr('$')),
        \ {_, buffer -> bufloaded(buffer) && !empty(s:nameIn(a:folder, buffer))})
endfunction

function s:inBuffer(buffer, command) abort
  if a:buffer == bufnr('%')
    execute a:command
    return
  endif
  let [here, view] = [bufnr('%'), winsaveview()]
  execute 'silent keepalt keepjumps hide buffer' a:buffer
  try
    execute a:command
  finally
    execute 'silent keepalt keepjumps hide buffer' here
    call winrestview(view)
  endtry
endfunction

" The program may change any note, so all must be in their files.
function s:saveNotes(folder) abort
  for buffer in s:openNotes(a:folder)
    if getbufvar(buffer, '&modified')
      call s:inBuffer(buffer, 'silent write')
      if getbufvar(buffer, '&modified')
        throw 'tessaly: ' . bufname(buffer) . ' could not be saved; nothing was done'
      endif
    endif
  endfor
endfunction

function s:readNotes(folder) abort
  for buffer in s:openNotes(a:folder)
    let automatically = getbufvar(buffer, '&autoread')
    call setbufvar(buffer, '&autoread', 1)
    execute 'silent checktime' buffer
    call setbufvar(buffer, '&autoread', automatically)
    if !getbufvar(buffer, '&modified') && s:differs(buffer)
      call s:inBuffer(buffer, 'call s:readAgain()')
    endif
  endfor
endfunction

" Where times of files are counted in seconds, a change can look like none.
function s:differs(buffer) abort
  let path = fnamemodify(bufname(a:buffer), ':p')
  if !filereadable(path) || getbufvar(a:buffer, '&fileencoding') !~# '^\%(utf-8\)\?$'
    return 0
  endif
  let lines = readfile(path)
  if !empty(lines) && getbufvar(a:buffer, '&bomb')
    let lines[0] = substitute(lines[0], '^\%ufeff', '', '')
  endif
  if getbufvar(a:buffer, '&fileformat') ==# 'dos'
    call map(lines, {_, line -> substitute(line, '\r$', '', '')})
  endif
  return getbufvar(a:buffer, '&fileformat') !=# 'mac'
        \ && (empty(lines) ? [''] : lines) !=# getbufline(a:buffer, 1, '$')
endfunction

function s:readAgain() abort
  let view = winsaveview()
  silent keepalt keepjumps edit
  call winrestview(view)
endfunction

" Tasks.

" Lets the program change files between saving and reading. What it could do in part is told, too.
function s:changeFiles(folder, arguments) abort
  let [line, characters] = [line('.'), strchars(strpart(getline('.'), 0, col('.') - 1))]
  let ended = s:run(a:arguments)
  call s:readNotes(a:folder)
  call cursor(line, strlen(strcharpart(getline(line), 0, characters)) + 1)
  call s:tell(ended.output)
  if ended.status != 0
    throw s:reasonOf(ended)
  elseif !empty(ended.errors)
    call s:complain(join(ended.errors, "\n"))
  endif
endfunction

" [data folder, the name of the buffer's note]; all notes are saved then.
function s:savedNote() abort
  let folder = s:dataFolder()
  let name = s:nameIn(folder, bufnr('%'))
  if empty(name)
    throw 'tessaly: this file is no note in ' . folder
  endif
  call s:saveNotes(folder)
  return [folder, name]
endfunction

" The user's settings of what begins a task.
function s:markerSettings() abort
  let settings = {}
  for setting in map(s:ask(['settings', 'list', '--json']), {_, line -> s:record(line)})
    if index(s:markerKeys, setting.key) >= 0
      let settings[setting.key] = setting.value
    endif
  endfor
  return settings
endfunction

" What kinds of lines they are, as the program reads them: 'open', 'done', 'text', ... NUL, which
" Vim has as a line feed in a line, must not make two of it.
function s:kindsOf(lines) abort
  let text = join(map(copy(a:lines), {_, line -> tr(line, "\n", ' ')}), "\n")
  let params = {'text': text, 'settings': s:markerSettings()}
  return map(s:request('parse', params), {_, record -> record.type})
endfunction

" The numbers of the lines that are tasks; of a single line, and where there is none, all.
function s:taskLines(first, last, kinds) abort
  let lines = range(a:first, a:last)
  let tasks = filter(copy(lines), {index, _ ->
        \ index(['open', 'done', 'scheduled', 'cancelled'], get(a:kinds, index, '')) >= 0})
  return empty(tasks) ? lines : tasks
endfunction

function s:change(verb, first, last, day) abort
  let kinds = a:first == a:last ? [] : s:kindsOf(getline(a:first, a:last))
  call s:changeLines(a:verb, s:taskLines(a:first, a:last, kinds), a:day)
endfunction

function s:changeLines(verb, lines, day) abort
  let [folder, name] = s:savedNote()
  let arguments = [a:verb] + map(copy(a:lines), {_, line -> name . ':' . line}) + a:day
  let text = getline(a:lines[0])
  if len(a:lines) == 1 && !empty(text)
    let isLong = strchars(text) > s:longestExpected
    let text = isLong ? strcharpart(text, 0, s:longestExpected) . '...' : text
    call add(arguments, '--expect=' . text)
  endif
  call s:changeFiles(folder, arguments)
endfunction

function s:toggle(first, last) abort
  let kinds = s:kindsOf(getline(a:first, a:last))
  let lines = s:taskLines(a:first, a:last, kinds)
  let isDone = empty(filter(copy(lines), {_, line -> get(kinds, line - a:first, '') !=# 'done'}))
  call s:changeLines(isDone ? 'reopen' : 'done', lines, [])
endfunction

function s:schedule(first, last, day) abort
  let day = empty(a:day) ? s:question('Schedule to (fri, +3d, 2019-05-22): ') : a:day
  if !empty(day)
    call s:change('schedule', a:first, a:last, [day])
  endif
endfunction

function s:undo(count) abort
  let folder = s:dataFolder()
  call s:saveNotes(folder)
  call s:changeFiles(folder, ['undo'] + (empty(a:count) ? [] : [a:count]))
endfunction

function s:open(note) abort
  let note = empty(a:note) ? s:question('Day or note: ') : a:note
  if empty(note)
    return
  endif
  let path = s:fileOf(note)
  call mkdir(fnamemodify(path, ':h'), 'p', 0700)
  execute 'edit' fnameescape(path)
endfunction

function s:question(text) abort
  call inputsave()
  let answer = input(a:text, '', 'custom,tessaly#completeDay')
  call inputrestore()
  return trim(answer)
endfunction

" Text. Places are bytes of the buffer's lines, joined by line feeds.

function s:mark(action, range, first, last) abort
  if !&modifiable
    throw 'tessaly: this text cannot be changed'
  endif
  if &encoding !=# 'utf-8'
    throw "tessaly: 'encoding' must be utf-8"
  endif
  let lines = getline(1, '$')
  if match(lines, "\n") >= 0
    throw 'tessaly: this text holds the character NUL'
  endif
  let isSelected = a:range == 2 && [a:first, a:last] == [line("'<"), line("'>")]
        \ && visualmode() ==# 'v'
  if isSelected
    let [start, end] = [s:startOfSelection(lines), s:endOfSelection(lines)]
  elseif a:range > 0
    let [start, end] = [s:placeOf(lines, a:first, 0),
          \ s:placeOf(lines, a:last, strlen(lines[a:last - 1]))]
  else
    let start = s:placeOf(lines, line('.'), col('.') - 1)
    let end = start
  endif
  let answer = s:marked(a:action, join(lines, "\n"), start, end - start)
  call s:show(answer, lines, isSelected ? 'words' : a:range > 0 ? 'lines' : 'cursor')
endfunction

function s:marked(action, text, start, length) abort
  return s:record(join(s:ask(
        \ ['mark', a:action, '--select', a:start . ',' . a:length, '--bytes', '--json'], a:text)))
endfunction

function s:placeOf(lines, line, column) abort
  let before = a:line > 1 ? strlen(join(a:lines[0 : a:line - 2], "\n")) + 1 : 0
  return before + min([a:column, strlen(a:lines[a:line - 1])])
endfunction

function s:startOfSelection(lines) abort
  return s:placeOf(a:lines, line("'<"), col("'<") - 1)
endfunction

" The last character belongs to the selection, with what is combined with it.
function s:endOfSelection(lines) abort
  let text = a:lines[line("'>") - 1]
  let column = min([col("'>") - 1, strlen(text)])
  let last = &selection ==# 'exclusive' ? '' : matchstr(strpart(text, column), '^.')
  return s:placeOf(a:lines, line("'>"), column + strlen(last))
endfunction

function s:show(answer, old, what) abort
  let [line, column] = [line('.'), col('.')]
  let fromEnd = strlen(getline(line)) - column
  let new = split(a:answer.text, "\n", 1)
  call s:replaceLines(a:old, new)
  let selection = a:answer.selection
  let [first, firstColumn] = s:positionOf(a:answer.text, selection.location)
  let [last, lastColumn] = s:positionOf(a:answer.text, selection.location + selection.length)
  if a:what ==# 'cursor'
    call cursor(first, firstColumn + 1)
  elseif a:what ==# 'words'
    call s:select([first, firstColumn], [last, lastColumn])
    call cursor(first, firstColumn + 1)
  else
    call s:selectLines(first, last)
    call cursor(line, max([strlen(getline(line)) - fromEnd, 1]))
  endif
endfunction

" No action adds lines or takes any away. Only those that differ are touched, so that marks and folds
" elsewhere stay.
function s:replaceLines(old, new) abort
  if len(a:old) != len(a:new)
    throw 'tessaly: the program cannot be understood; is it of another version?'
  endif
  for index in range(len(a:new))
    if a:old[index] !=# a:new[index]
      call setline(index + 1, a:new[index])
    endif
  endfor
endfunction

" [line from 1, byte in it from 0]
function s:positionOf(text, place) abort
  let before = split(strpart(a:text, 0, a:place), "\n", 1)
  return [len(before), strlen(before[-1])]
endfunction

" For gv; `end` is behind the selection.
function s:select(start, end) abort
  let [last, column] = a:end
  if column == 0 && last > a:start[0]
    let last -= 1
    let column = strlen(getline(last))
  endif
  if &selection !=# 'exclusive' && [last, column] != a:start
    let column -= strlen(matchstr(strpart(getline(last), 0, column), '.$'))
  endif
  call setpos("'<", [0, a:start[0], a:start[1] + 1, 0])
  call setpos("'>", [0, last, column + 1, 0])
endfunction

function s:selectLines(first, last) abort
  if visualmode() ==# 'V'
    call setpos("'<", [0, a:first, 1, 0])
    call setpos("'>", [0, a:last, 2147483647, 0])
  endif
endfunction
