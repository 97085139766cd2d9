;;; tessaly.el --- Tasks and Markdown commands of Tessaly  -*- lexical-binding: t; -*-

;; SPDX-License-Identifier: MIT
;; Version: 1.0
;; Package-Requires: ((emacs "27.1"))
;; Keywords: calendar, outlines, wp

;;; Commentary:

;; For notes in Tessaly's data folder.  Put this into your init file:
;;
;;   (require 'tessaly)
;;   (tessaly-global-mode 1)
;;
;; Commands on tasks save the notes, let the program change the files, and
;; read them again.  Commands on text let the program be a filter, and change
;; the buffer alone.  The keys are behind C-c C-t; C-c C-t C-h lists them.

;;; Code:

(require 'json)
(require 'seq)
(require 'subr-x)

(defgroup tessaly nil
  "Tasks and Markdown commands of Tessaly."
  :group 'calendar)

(defcustom tessaly-command "tessaly"
  "The program."
  :type 'string)

(defcustom tessaly-root nil
  "The data folder; nil: the one that the program uses by itself."
  :type '(choice (const :tag "The program's own" nil) directory))

(defconst tessaly--actions
  '("bold" "italic" "link" "inlineCode" "heading1" "heading2" "heading3" "heading4"
    "todo" "numberedTodo" "unorderedList" "orderedList" "markAsDone" "markAsScheduled"
    "markAsCanceled" "shiftRight" "shiftLeft" "moveUp" "moveDown" "quote"))

(defconst tessaly--days
  '("today" "tomorrow" "yesterday" "mon" "tue" "wed" "thu" "fri" "sat" "sun"
    "+1d" "+3d" "+1w" "+1m"))

(defconst tessaly--marker-keys '("isAsteriskTodo" "isDashTodo" "isNumbersTodo"))

(defconst tessaly--longest-expected 1000
  "Characters of a line; an argument of a program cannot be of any length.")

;;; The program

(defun tessaly--run (arguments &optional input)
  "Run the program with ARGUMENTS, and INPUT as its standard input.
Return a list: exit status, output, what it complained of."
  (unless (executable-find tessaly-command)
    (user-error "The program %s cannot be found; set tessaly-command" tessaly-command))
  (let ((errors (make-temp-file "tessaly"))
        (words (append (and tessaly-root (list "--root" (expand-file-name tessaly-root)))
                       arguments))
        (default-directory temporary-file-directory)
        (coding-system-for-read 'utf-8-unix)
        (coding-system-for-write 'utf-8-unix))
    (unwind-protect
        (with-temp-buffer
          (let ((status (apply #'call-process-region (or input "") nil tessaly-command
                               nil (list t errors) nil words)))
            (list status (buffer-string) (tessaly--complaints errors))))
      (delete-file errors))))

(defun tessaly--complaints (file)
  "The text of FILE, without the program's name."
  (with-temp-buffer
    (insert-file-contents file)
    (string-trim (replace-regexp-in-string "^tessaly: " "" (buffer-string)))))

(defun tessaly--refuse (status complaints)
  "Tell why a run ended with STATUS and COMPLAINTS."
  (user-error "%s" (if (string-empty-p complaints)
                       (format "The program ended with %s" status)
                     complaints)))

(defun tessaly--ask (arguments &optional input)
  "The program's output, for ARGUMENTS and INPUT; an error is what it complains of."
  (pcase-let ((`(,status ,output ,complaints) (tessaly--run arguments input)))
    (unless (eql status 0)
      (tessaly--refuse status complaints))
    output))

(defun tessaly--record (text)
  "The JSON object TEXT as an alist."
  (condition-case nil
      (if (fboundp 'json-parse-string)
          (json-parse-string text :object-type 'alist :null-object nil
                             :false-object json-false)
        (let ((json-object-type 'alist))
          (json-read-from-string text)))
    (error (user-error "The program cannot be understood; is it of another version?"))))

(defun tessaly--request (method params)
  "The result of one request to `tessaly rpc': METHOD with PARAMS, an alist.
An error is what it answers with."
  (let* ((request (json-encode `((id . 1) (method . ,method) (params . ,params))))
         (answer (tessaly--record (tessaly--ask '("rpc") (concat request "\n"))))
         (problem (alist-get 'error answer)))
    (when problem
      (user-error "%s" (alist-get 'message problem)))
    (alist-get 'result answer)))

;;; The data folder and its notes

(defun tessaly--file-of (note)
  "The file of NOTE, a day or a title.  A day's need not be there."
  (alist-get 'path (tessaly--record (tessaly--ask (list "where" "--json" "--" note)))))

(defun tessaly--data-folder ()
  "The data folder, without links."
  (file-truename (file-name-as-directory
                  (alist-get 'root (tessaly--record (tessaly--ask '("where" "--json")))))))

(defun tessaly--name-in (folder &optional buffer)
  "How the program calls BUFFER's file: \"Notes/Work/Plans.txt\".
Nil where it is no note in FOLDER."
  (let ((file (buffer-file-name buffer)))
    (when (and file (not (file-remote-p file)))
      (let ((name (file-relative-name (file-truename file) folder)))
        (let ((case-fold-search nil))
          (and (string-match-p "\\`\\(?:Calendar\\|Notes\\)/[^\0]*\\.\\(?:txt\\|md\\)\\'" name)
               (not (string-match-p "/\\." name))
               name))))))

(defun tessaly--open-notes (folder)
  "The buffers with notes in FOLDER; those that share another's text are left out."
  (seq-filter (lambda (buffer)
                (and (not (buffer-base-buffer buffer)) (tessaly--name-in folder buffer)))
              (buffer-list)))

(defun tessaly--save-notes (folder)
  "Save all notes in FOLDER; the program may change any of them."
  (dolist (buffer (tessaly--open-notes folder))
    (with-current-buffer buffer
      (when (buffer-modified-p)
        (unless (verify-visited-file-modtime buffer)
          (user-error "%s changed on disk since it was read; nothing was done" (buffer-name)))
        (let ((save-silently t))
          (save-buffer 0))))))

(defun tessaly--read-notes (folder)
  "Read the notes in FOLDER again whose files have changed."
  (dolist (buffer (tessaly--open-notes folder))
    (with-current-buffer buffer
      (unless (or (buffer-modified-p) (verify-visited-file-modtime buffer))
        (if (file-exists-p buffer-file-name)
            (tessaly--read-again)
          (message "%s is no longer there" (buffer-name)))))))

(defun tessaly--read-again ()
  "Read the file again; all cursors stay on their lines and columns."
  (let ((here (tessaly--line-and-column (point)))
        (windows (mapcar (lambda (window)
                           (list window
                                 (tessaly--line-and-column (window-point window))
                                 (tessaly--line-and-column (window-start window))))
                         (get-buffer-window-list nil nil t))))
    (revert-buffer t t t)
    (tessaly--go-to here)
    (pcase-dolist (`(,window ,point ,start) windows)
      (set-window-start window (tessaly--place-of start) t)
      (set-window-point window (tessaly--place-of point)))))

(defun tessaly--line-and-column (place)
  "The line, from 1, and the characters before PLACE in it."
  (save-excursion
    (goto-char place)
    (cons (line-number-at-pos nil t) (- (point) (line-beginning-position)))))

(defun tessaly--go-to (line-and-column)
  "Go to LINE-AND-COLUMN, as near as there is."
  (save-restriction
    (widen)
    (goto-char (point-min))
    (forward-line (1- (car line-and-column)))
    (goto-char (min (+ (point) (cdr line-and-column)) (line-end-position)))))

(defun tessaly--place-of (line-and-column)
  "The position of LINE-AND-COLUMN."
  (save-excursion
    (tessaly--go-to line-and-column)
    (point)))

;;; Tasks

(defun tessaly--change-files (folder arguments)
  "Let the program change files in FOLDER by ARGUMENTS, and read them again.
What it could do in part is told, too."
  (pcase-let ((`(,status ,output ,complaints) (tessaly--run arguments)))
    (tessaly--read-notes folder)
    (if (eql status 0)
        (message "%s" (string-trim (concat output complaints)))
      (tessaly--refuse status complaints))))

(defun tessaly--selected-lines ()
  "The first and last line that the region touches, or point's line twice."
  (if (use-region-p)
      (let ((first (line-number-at-pos (region-beginning) t))
            (end (region-end)))
        (cons first
              (max first (line-number-at-pos
                          (if (save-excursion (goto-char end) (bolp)) (1- end) end) t))))
    (let ((line (line-number-at-pos nil t)))
      (cons line line))))

(defun tessaly--text-of-lines (first last)
  "The text of the lines FIRST to LAST."
  (save-excursion
    (save-restriction
      (widen)
      (goto-char (point-min))
      (forward-line (1- first))
      (buffer-substring-no-properties (point) (line-end-position (1+ (- last first)))))))

(defun tessaly--marker-settings ()
  "The user's settings of what begins a task."
  (let ((settings (mapcar #'tessaly--record
                          (split-string (tessaly--ask '("settings" "list" "--json")) "\n" t))))
    (mapcar (lambda (setting) (cons (alist-get 'key setting) (alist-get 'value setting)))
            (seq-filter (lambda (setting) (member (alist-get 'key setting) tessaly--marker-keys))
                        settings))))

(defun tessaly--kinds (first last)
  "How the program reads the lines FIRST to LAST: an alist of numbers and kinds.
Kinds are \"open\", \"done\", \"text\" and others."
  ;; Emacs reads no JSON with NUL, which changes no line's kind.
  (let ((text (subst-char-in-string 0 ?\s (concat (tessaly--text-of-lines first last) "\n"))))
    (seq-mapn (lambda (line record) (cons line (alist-get 'type record)))
              (number-sequence first last)
              (tessaly--request "parse" `((text . ,text)
                                          (settings . ,(tessaly--marker-settings)))))))

(defun tessaly--tasks (kinds)
  "The lines of KINDS that are tasks, or all where there is none."
  (mapcar #'car
          (or (seq-filter (lambda (kind)
                            (member (cdr kind) '("open" "done" "scheduled" "cancelled")))
                          kinds)
              kinds)))

(defun tessaly--expected (line)
  "The option that tells the text of LINE."
  (let ((text (tessaly--text-of-lines line line)))
    (unless (string-empty-p text)
      (list (concat "--expect="
                    (if (> (length text) tessaly--longest-expected)
                        (concat (substring text 0 tessaly--longest-expected) "...")
                      text))))))

(defun tessaly--change-lines (choose &optional day)
  "Change the selected tasks to DAY or by themselves.
CHOOSE returns the verb for an alist of their lines and kinds."
  (let ((folder (tessaly--data-folder)))
    (unless (tessaly--name-in folder)
      (user-error "This file is no note in %s" folder))
    (pcase-let* ((`(,first . ,last) (tessaly--selected-lines))
                 (kinds (tessaly--kinds first last))
                 (lines (tessaly--tasks kinds))
                 (verb (funcall choose (seq-filter (lambda (kind) (memq (car kind) lines)) kinds)))
                 (name (tessaly--name-in folder)))
      (tessaly--save-notes folder)
      (tessaly--change-files
       folder
       (append (list verb)
               (mapcar (lambda (line) (format "%s:%d" name line)) lines)
               (and day (list day))
               (and (null (cdr lines)) (tessaly--expected (car lines))))))))

;;;###autoload
(defun tessaly-toggle ()
  "Mark tasks of the region, or on point's line, as done.
Where all of them are, open them again."
  (interactive)
  (tessaly--change-lines
   (lambda (kinds)
     (if (seq-every-p (lambda (kind) (equal (cdr kind) "done")) kinds) "reopen" "done"))))

;;;###autoload
(defun tessaly-cancel ()
  "Mark tasks of the region, or on point's line, as cancelled."
  (interactive)
  (tessaly--change-lines (lambda (_kinds) "cancel")))

;;;###autoload
(defun tessaly-reopen ()
  "Open tasks of the region, or on point's line, again."
  (interactive)
  (tessaly--change-lines (lambda (_kinds) "reopen")))

;;;###autoload
(defun tessaly-schedule (day)
  "Schedule tasks of the region, or on point's line, to DAY.
A day is fri, +3d, 2019-05-22 and the like."
  (interactive (list (completing-read "Schedule to (fri, +3d, 2019-05-22): " tessaly--days)))
  (tessaly--change-lines (lambda (_kinds) "schedule") day))

;;;###autoload
(defun tessaly-undo (&optional count)
  "Take the last change of tasks back in all its notes, or the last COUNT."
  (interactive "p")
  (let ((folder (tessaly--data-folder)))
    (tessaly--save-notes folder)
    (tessaly--change-files folder (list "undo" (number-to-string (or count 1))))))

;;;###autoload
(defun tessaly-open (note)
  "Go to NOTE: a day, or another note by its title or file.
A day is fri, +3d, 2019-05-22 and the like."
  (interactive (list (completing-read "Day or note: " tessaly--days)))
  (let ((file (tessaly--file-of note)))
    (with-file-modes #o700
      (make-directory (file-name-directory file) t))
    (find-file file)))

;;;###autoload
(defun tessaly-today ()
  "Go to today's note."
  (interactive)
  (tessaly-open "today"))

;;; Text

(defun tessaly--bytes (start end)
  "The bytes from START to END as they are in UTF-8 text with line feeds."
  (length (encode-coding-string (buffer-substring-no-properties start end) 'utf-8-unix)))

(defun tessaly--characters (text bytes)
  "How many characters the first BYTES of the encoded TEXT are."
  (length (decode-coding-string (substring text 0 bytes) 'utf-8-unix)))

;;;###autoload
(defun tessaly-mark (action)
  "Carry out ACTION on the region, or at point, as one step of undo."
  (interactive (list (completing-read "Action: " tessaly--actions nil t)))
  (barf-if-buffer-read-only)
  (let* ((has-region (use-region-p))
         (is-backward (and has-region (< (point) (mark))))
         (start (if has-region (region-beginning) (point)))
         (end (if has-region (region-end) (point))))
    (save-restriction
      (widen)
      (let* ((answer (tessaly--record
                      (tessaly--ask
                       (list "mark" action "--bytes" "--json" "--select"
                             (format "%d,%d" (tessaly--bytes (point-min) start)
                                     (tessaly--bytes start end)))
                       (buffer-substring-no-properties (point-min) (point-max)))))
             (text (alist-get 'text answer))
             (encoded (encode-coding-string text 'utf-8-unix))
             (selection (alist-get 'selection answer))
             (location (alist-get 'location selection))
             (first (tessaly--characters encoded location))
             (behind (tessaly--characters encoded (+ location (alist-get 'length selection)))))
        (tessaly--replace-text text)
        (if has-region
            (tessaly--select (+ (point-min) first) (+ (point-min) behind) is-backward)
          (goto-char (+ (point-min) first)))))))

(defun tessaly--replace-text (text)
  "Make TEXT the buffer's.
Only what differs is touched, so that markers elsewhere stay."
  (let* ((old (buffer-substring-no-properties (point-min) (point-max)))
         (shortest (min (length old) (length text)))
         (head (tessaly--common old text))
         (tail 0))
    (while (and (< tail (- shortest head))
                (eq (aref old (- (length old) tail 1)) (aref text (- (length text) tail 1))))
      (setq tail (1+ tail)))
    (unless (= head (length old) (length text))
      (atomic-change-group
        (goto-char (+ (point-min) head))
        (insert (substring text head (- (length text) tail)))
        (delete-region (point) (- (point-max) tail))))))

(defun tessaly--common (one other)
  "How many characters ONE and OTHER begin with together."
  (let ((compared (compare-strings one nil nil other nil nil)))
    (if (eq compared t) (length one) (1- (abs compared)))))

(defun tessaly--select (start end is-backward)
  "Make START to END the region; with IS-BACKWARD, point is before it.
It is not active, for undo would keep within it."
  (set-mark (if is-backward end start))
  (goto-char (if is-backward start end))
  (deactivate-mark))

(defmacro tessaly--define-marks (&rest actions)
  "Define a command for each of ACTIONS, named after it."
  `(progn
     ,@(mapcar (lambda (action)
                 `(defun ,(intern (concat "tessaly-mark-" action)) ()
                    ,(format "Carry out %s on the region, or at point." action)
                    (interactive)
                    (tessaly-mark ,action)))
               actions)))

(tessaly--define-marks
 "bold" "italic" "link" "inlineCode" "heading1" "heading2" "heading3" "heading4" "todo"
 "numberedTodo" "unorderedList" "orderedList" "shiftRight" "shiftLeft" "moveUp" "moveDown" "quote")

;;; The modes

(defvar tessaly-command-map
  (let ((map (make-sparse-keymap)))
    (pcase-dolist (`(,key . ,command)
                   '(("t" . tessaly-toggle)
                     ("c" . tessaly-cancel)
                     ("o" . tessaly-reopen)
                     ("s" . tessaly-schedule)
                     ("u" . tessaly-undo)
                     ("n" . tessaly-today)
                     ("g" . tessaly-open)
                     ("m" . tessaly-mark)
                     ("*" . tessaly-mark-todo)
                     ("+" . tessaly-mark-numberedTodo)
                     ("-" . tessaly-mark-unorderedList)
                     ("." . tessaly-mark-orderedList)
                     ("q" . tessaly-mark-quote)
                     ("1" . tessaly-mark-heading1)
                     ("2" . tessaly-mark-heading2)
                     ("3" . tessaly-mark-heading3)
                     ("4" . tessaly-mark-heading4)
                     ("b" . tessaly-mark-bold)
                     ("i" . tessaly-mark-italic)
                     ("`" . tessaly-mark-inlineCode)
                     ("l" . tessaly-mark-link)
                     (">" . tessaly-mark-shiftRight)
                     ("<" . tessaly-mark-shiftLeft)
                     ("k" . tessaly-mark-moveUp)
                     ("j" . tessaly-mark-moveDown)))
      (define-key map key command))
    map)
  "What is behind the prefix of `tessaly-mode'.")

(defvar tessaly-mode-map
  (let ((map (make-sparse-keymap)))
    (define-key map (kbd "C-c C-t") tessaly-command-map)
    map)
  "Keys of `tessaly-mode'.")

;;;###autoload
(define-minor-mode tessaly-mode
  "Keys for Tessaly's commands, behind \\<tessaly-mode-map>\\[tessaly-toggle] and others.

\\{tessaly-mode-map}"
  :lighter " Tessaly"
  :keymap tessaly-mode-map)

(defvar tessaly--known-folder nil
  "The program and its settings, and the data folder that it told.")

(defun tessaly--turn-on ()
  "Turn `tessaly-mode' on in notes of the data folder.
Says nothing when that cannot be found out."
  (when (and buffer-file-name
             (string-match-p "/\\(?:Calendar\\|Notes\\)/.*\\.\\(?:txt\\|md\\)\\'" buffer-file-name))
    (let ((program (list tessaly-command tessaly-root)))
      (unless (equal (car tessaly--known-folder) program)
        (setq tessaly--known-folder
              (ignore-errors (cons program (tessaly--data-folder)))))
      (when (and tessaly--known-folder (tessaly--name-in (cdr tessaly--known-folder)))
        (tessaly-mode 1)))))

;;;###autoload
(define-globalized-minor-mode tessaly-global-mode tessaly-mode tessaly--turn-on
  :group 'tessaly)

(provide 'tessaly)
;;; tessaly.el ends here
