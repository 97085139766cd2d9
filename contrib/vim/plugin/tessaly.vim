" SPDX-License-Identifier: MIT
" Tessaly's tasks and Markdown commands in Vim 8.2 and later, and in Neovim. See :help tessaly.

if exists('g:loaded_tessaly') || &compatible
  finish
endif
let g:loaded_tessaly = 1

command -bar -range TessalyToggle call tessaly#toggle(<line1>, <line2>)
command -bar -range TessalyCancel call tessaly#cancel(<line1>, <line2>)
command -bar -range TessalyReopen call tessaly#reopen(<line1>, <line2>)
command -bar -range -nargs=? -complete=custom,tessaly#completeDay TessalySchedule
      \ call tessaly#schedule(<line1>, <line2>, <q-args>)
command -bar -nargs=? TessalyUndo call tessaly#undo(<q-args>)
command -bar TessalyToday call tessaly#open('today')
command -nargs=? -complete=custom,tessaly#completeDay TessalyOpen call tessaly#open(<q-args>)
command -bar -range -nargs=1 -complete=custom,tessaly#completeAction TessalyMark
      \ call tessaly#mark(<q-args>, <range>, <line1>, <line2>)

" name, keys behind <LocalLeader>t, command, and whether it also works on what is selected
let s:mappings = [
      \ ['toggle', 't', 'TessalyToggle', 1],
      \ ['cancel', 'c', 'TessalyCancel', 1],
      \ ['reopen', 'o', 'TessalyReopen', 1],
      \ ['schedule', 's', 'TessalySchedule', 1],
      \ ['undo', 'u', 'TessalyUndo', 0],
      \ ['today', 'n', 'TessalyToday', 0],
      \ ['open', 'g', 'TessalyOpen', 0],
      \ ['todo', '*', 'TessalyMark todo', 2],
      \ ['numberedTodo', '+', 'TessalyMark numberedTodo', 2],
      \ ['unorderedList', '-', 'TessalyMark unorderedList', 2],
      \ ['orderedList', '.', 'TessalyMark orderedList', 2],
      \ ['quote', 'q', 'TessalyMark quote', 2],
      \ ['heading1', '1', 'TessalyMark heading1', 2],
      \ ['heading2', '2', 'TessalyMark heading2', 2],
      \ ['heading3', '3', 'TessalyMark heading3', 2],
      \ ['heading4', '4', 'TessalyMark heading4', 2],
      \ ['bold', 'b', 'TessalyMark bold', 2],
      \ ['italic', 'i', 'TessalyMark italic', 2],
      \ ['inlineCode', '`', 'TessalyMark inlineCode', 2],
      \ ['link', 'l', 'TessalyMark link', 2],
      \ ['shiftRight', '>', 'TessalyMark shiftRight', 2],
      \ ['shiftLeft', '<lt>', 'TessalyMark shiftLeft', 2],
      \ ['moveUp', 'k', 'TessalyMark moveUp', 2],
      \ ['moveDown', 'j', 'TessalyMark moveDown', 2],
      \ ]

for [s:name, s:keys, s:command, s:selection] in s:mappings
  execute printf('nnoremap <silent> <Plug>(tessaly-%s) :%s<CR>', s:name, s:command)
  if s:selection
    " What was marked stays selected, so that the next command finds it.
    execute printf('xnoremap <silent> <Plug>(tessaly-%s) :%s<CR>%s', s:name, s:command,
          \ s:selection == 2 ? 'gv' : '')
  endif
endfor
unlet s:name s:keys s:command s:selection

function s:mapKeys() abort
  if get(g:, 'tessaly_no_mappings', 0) || !tessaly#isNote()
    return
  endif
  for [name, keys, _, selection] in s:mappings
    let target = '<Plug>(tessaly-' . name . ')'
    for mode in selection ? ['n', 'x'] : ['n']
      if empty(maparg('<LocalLeader>t' . keys, mode)) && !hasmapto(target, mode)
        execute mode . 'map <buffer> <LocalLeader>t' . keys target
      endif
    endfor
  endfor
endfunction

augroup tessaly
  autocmd!
  autocmd BufReadPost,BufNewFile */Calendar/*.txt,*/Calendar/*.md,*/Notes/*.txt,*/Notes/*.md
        \ call s:mapKeys()
augroup END
